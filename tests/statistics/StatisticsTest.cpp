#include "commands/AliasesAndGroups.h"
#include "common/ChatFixture.h"
#include "platform/Cp1252.h"
#include "statistics/FlagNames.h"
#include "statistics/NameFormat.h"
#include "statistics/Statstring.h"
#include "statistics/UserNames.h"

class FlagNamesTest : public ChatFixture {};
class StatstringTest : public ChatFixture {};
class UserNamesForProfiles : public SlotFixture {};

TEST_F(FlagNamesTest, PingBandsTakeTheLowerNeighbour) {
    EXPECT_EQ(GetPingStatus(-1), QStringLiteral("Spoofed"));
    EXPECT_EQ(GetPingStatus(0), QStringLiteral("Spoofed"));
    EXPECT_EQ(GetPingStatus(-2), QStringLiteral("Horrible"));
    const char* status[] = {"Excellent", "Low", "Average", "Poor", "High"};
    const char* icon[] = {"Green", "Lime", "Yellow", "Orange", "Red"};
    for (int band = 0; band < 5; ++band) {
        const int ping = 200 + 100 * band;
        EXPECT_EQ(GetPingStatus(ping), QLatin1String(status[band])) << ping;
        EXPECT_EQ(GetPingIcon(ping), QLatin1String(icon[band])) << ping;
        EXPECT_EQ(GetPingStatus(ping - 99), QLatin1String(status[band])) << ping - 99;
    }
    EXPECT_EQ(GetPingStatus(601), QStringLiteral("Horrible"));
    EXPECT_EQ(GetPingIcon(601), QStringLiteral("Maroon"));
    EXPECT_EQ(GetPingIcon(9), QStringLiteral("Clear"));
    EXPECT_EQ(GetPingIcon(10), QStringLiteral("Green"));
    EXPECT_EQ(GetPingIcon(-1), QStringLiteral("Maroon"));
}

TEST_F(FlagNamesTest, FlagsAreNamedInTheirListingOrder) {
    EXPECT_EQ(GetUserFlagNames(0), QStringLiteral("Normal"));
    EXPECT_EQ(GetUserFlagNames(3), QStringLiteral("Rep + Mod"));
    const std::pair<quint32, const char*> userFlags[] = {
        {0x1, "Rep"},         {0x2, "Mod"},
        {0x4, "Speaker"},     {0x8, "Admin"},
        {0x10, "UDP"},        {0x20, "Squelched"},
        {0x40, "Guest"},      {0x100, "Beep"},
        {0x200, "PGL"},       {0x400, "PGL Official"},
        {0x800, "KBK"},       {0x1000, "KBK Official"},
        {0x100000, "Jailed"}, {0x200000, "GF"}};
    for (const auto& [bit, name] : userFlags)
        EXPECT_EQ(GetUserFlagNames(bit), QLatin1String(name)) << bit;
    const std::pair<quint32, const char*> channelFlags[] = {
        {0x1, "Public"},  {0x2, "Moderated"}, {0x4, "Locked"},   {0x8, "Silent"},
        {0x10, "System"}, {0x20, "Product"},  {0x1000, "Global"}};
    for (const auto& [bit, name] : channelFlags)
        EXPECT_EQ(GetChannelFlagNames(bit), QLatin1String(name)) << bit;
    EXPECT_EQ(GetUserFlagNames(0x100001), QStringLiteral("Rep + Jailed"));
    EXPECT_EQ(GetUserFlagNames(0x30), QStringLiteral("Squelched + UDP"));
    EXPECT_EQ(GetUserFlagNames(0x80000000u), QString()) << "unknown bits alone name nothing";
    EXPECT_EQ(GetChannelFlagNames(0), QStringLiteral("Private"));
    EXPECT_EQ(GetChannelFlagNames(0x1003), QStringLiteral("Global + Moderated + Public"));
    EXPECT_EQ(GetClanRankName(0), QStringLiteral("New Peon"));
    EXPECT_EQ(GetClanRankName(200), QStringLiteral("New Peon"));
    EXPECT_EQ(GetClanRankName(4), QStringLiteral("Chieftain"));
}

TEST_F(FlagNamesTest, OverridesTakeEffectAtTheNextCall) {
    writeFile(OverridesFile(), "[User_Flags]\r\nLagPlug=Plug\r\nNone=Nobody\r\n"
                               "[Ping_Status]\r\n0=Faked\r\n");
    EXPECT_EQ(GetUserFlagNames(0x10), QStringLiteral("Plug"));
    EXPECT_EQ(GetUserFlagNames(0), QStringLiteral("Nobody"));
    EXPECT_EQ(GetPingStatus(0), QStringLiteral("Faked"));
    EXPECT_EQ(GetPingStatus(100), QStringLiteral("Excellent"));
    // Same size, new text: the cache must notice the edit.
    writeFile(OverridesFile(), "[User_Flags]\r\nLagPlug=Lump\r\nNone=Nobody\r\n"
                               "[Ping_Status]\r\n0=Faked\r\n");
    EXPECT_EQ(GetUserFlagNames(0x10), QStringLiteral("Lump"));
}

TEST_F(FlagNamesTest, DisplayNamesPreferAliasesThenHideCharacters) {
    EXPECT_EQ(GetDisplayName("Hero*bob"), QStringLiteral("bob"));
    SettingsWrapper::instance().setHideChars(false);
    EXPECT_EQ(GetDisplayName("Hero*bob"), QStringLiteral("Hero*bob"));
    CreateAlias("Robert", {"BOB"});
    EXPECT_EQ(GetDisplayName("Hero*bob"), QStringLiteral("Robert"));
    EXPECT_EQ(GetDisplayName("bob"), QStringLiteral("Robert"));
}

TEST(NameFormat, HexPadsToTheWidthButNeverCuts) {
    EXPECT_EQ(FormatHex(3, 2), QStringLiteral("0x03"));
    EXPECT_EQ(FormatHex(0x100, 2), QStringLiteral("0x100"));
    EXPECT_EQ(FormatHex(0xabcdef, 8), QStringLiteral("0x00ABCDEF"));
}

TEST(UserNames, RealmNamesReduceToTheAccount) {
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("*bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("a*b*c"), false, -1), QStringLiteral("b*c"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, -1), QStringLiteral("*bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), true, -1), QStringLiteral("*bob"));
}

TEST_F(UserNamesForProfiles, TheProfilesProductDecidesTheStarForm) {
    const int star = SlotTable::instance().LoadProfile(QStringLiteral("names-star"));
    const int diablo = SlotTable::instance().LoadProfile(QStringLiteral("names-diablo"));
    Bots(star).Config.setClient(QStringLiteral("STAR"));
    Bots(diablo).Config.setClient(QStringLiteral("d2xp"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, star), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), true, star), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, diablo), QStringLiteral("*bob"));
}

namespace {

// A Diablo II character record: 33 bytes with class, level, flags, title and
// ladder at their places (counted from 1).
QString d2(const char* code, const char* name, quint8 characterClass, quint8 level, quint8 flags,
           quint8 title, quint8 ladder = 0xFF) {
    QByteArray data(33, '\x80');
    data[14 - 1] = char(characterClass);
    data[26 - 1] = char(level);
    data[27 - 1] = char(flags);
    data[28 - 1] = char(title);
    data[31 - 1] = char(ladder);
    return QLatin1String(code) + QStringLiteral("USEast,") + QLatin1String(name) + u',' +
           cp1252::decode(data);
}

QString detailed(const QString& statstring) {
    return ParseStatstring(statstring, true);
}

} // namespace

// The detailed text of each kind of record. Too few fields show the product
// alone, and never fail.
TEST_F(StatstringTest, RecordsOfEachProduct) {
    const std::pair<QString, const char*> rows[] = {
        {"RATS 0 0 0 0 0 0 0 0 RATS", "StarCraft (0 wins)"},
        {"PXES 1200 005 12 0", "StarCraft BroodWar (12 wins, rating of 1200, rank of 5)"},
        {"RTSJ 0 3 7 1", "Japanese StarCraft (7 wins, rank of 3 [spawn])"},
        {"NB2W 1500 0 20 1 0 0 1700 9",
         "WarCraft II (20 wins, rating of 1500, ironman rating of 1700, ironman rank of 9 "
         "[spawn])"},
        {"RATS 5", "StarCraft"},
        {"PXES 1 2 3", "StarCraft BroodWar"},
        {"RATS", "StarCraft"},
        {"LTRD 12 1 3 40 30 35 50 1000 0",
         "Diablo (Level 12 Rogue with 3 dots, 40 strength, 30 magic, 35 dexterity, 50 "
         "vitality, and 1000 gold)"},
        {"RHSD 1 7 0 1 1 1 1 1 0",
         "Diablo ShareWare (Level 1 Invalid Class with 0 dots, 1 strength, 1 magic, 1 "
         "dexterity, 1 vitality, and 1 gold)"},
        {"LTRD 12 1", "Diablo (Illegal Diablo Character \"LTRD 12 1\")"},
        {"RHSD 12 1", "Diablo ShareWare"},
        {"PX3W 6T3W 0", "WarCraft III The Frozen Throne (Archimonde Icon)"},
        {"3RAWx", "WarCraft III Reign of Chaos (Unknown Icon)"},
        {"VD2D", "Diablo II Classic (Open character)"},
        {"VD2DUSEast,Hero,short", "Diablo II Classic (Hero on realm USEast)"},
        {"VD2DUSEast", "Diablo II Classic (Open character)"},
        {"VD2D,,", "Diablo II Classic (Open character)"},
        // Class 5, title value 2, hardcore: a Duke.
        {d2("VD2D", "Grom", 5, 80, 0x04, 2 << 3, 1),
         "Diablo II Classic (Duke Grom, a hardcore ladder level 80 barbarian on realm USEast)"},
        // An expansion character, title value 3, hardcore and female: Guardian.
        {d2("PX2D", "Ama", 1, 99, 0x20 | 0x04 | 0x08, 3 << 3),
         "Diablo II Lord of Destruction (GuardianAma, a dead hardcore level 99 expansion "
         "amazon on realm USEast)"},
        {d2("PX2D", "Mat", 7, 50, 0x20, 3 << 3),
         "Diablo II Lord of Destruction (Matriarch Mat, a level 50 expansion assassin on realm "
         "USEast)"},
        // A classic character on the expansion has no title; dead needs hardcore.
        {d2("PX2D", "Old", 3, 30, 0x08, 1 << 3),
         "Diablo II Lord of Destruction (Old, a level 30 necromancer on realm USEast)"},
        // The other title rows, and a sorceress takes the female one.
        {d2("VD2D", "Sor", 2, 10, 0, 2 << 3),
         "Diablo II Classic (Lady Sor, a level 10 sorceress on realm USEast)"},
        {d2("VD2D", "Pal", 4, 10, 0x04, 3 << 3),
         "Diablo II Classic (King Pal, a hardcore level 10 paladin on realm USEast)"},
        {d2("PX2D", "Dru", 6, 10, 0x20, 1 << 3),
         "Diablo II Lord of Destruction (Slayer Dru, a level 10 expansion druid on realm USEast)"},
        {d2("VD2D", "Who", 9, 1, 0, 1 << 3),
         "Diablo II Classic (Sir Who, a level 1 unknown class on realm USEast)"},
    };
    for (const auto& [statstring, expected] : rows)
        EXPECT_EQ(detailed(statstring), QString::fromUtf8(expected)) << statstring.toStdString();
    EXPECT_EQ(ParseStatstring("PXES 1200 5 12 0", false), QStringLiteral("StarCraft BroodWar"));
}

TEST_F(StatstringTest, WarCraftThreeIconsAndClanTags) {
    QString clan = "kept";
    EXPECT_EQ(ParseStatstring("3RAW 2H3W 0 DCBA", true, clan),
              QStringLiteral("WarCraft III Reign of Chaos (Footman Icon)"));
    EXPECT_EQ(clan, QStringLiteral("ABCD"));
    clan = "kept";
    EXPECT_EQ(ParseStatstring("PX3W 6T3W 0 NALC", false, clan),
              QStringLiteral("WarCraft III The Frozen Throne"));
    EXPECT_EQ(clan, QStringLiteral("CLAN")) << "the tag is taken without detail too";
    clan = "kept";
    EXPECT_EQ(ParseStatstring("3RAW", true, clan), QStringLiteral("WarCraft III Reign of Chaos"));
    EXPECT_EQ(ParseStatstring("3RAW 6T3W 0", true, clan),
              QStringLiteral("WarCraft III Reign of Chaos (Unknown Icon)"));
    EXPECT_EQ(clan, QStringLiteral("kept"));
    EXPECT_EQ(GetWarcraftIconName("WAR3", "1Q"), QStringLiteral("Peon Icon"));
    EXPECT_EQ(GetWarcraftIconName("W3XP", "1T"), QStringLiteral("Peon Icon"));
    EXPECT_EQ(GetWarcraftIconName("WAR3", "5R"), QStringLiteral("Deathwing Icon"));
    EXPECT_EQ(GetWarcraftIconName("WAR3", "2T"), QStringLiteral("Unknown Icon"));
}

TEST_F(StatstringTest, OverridesRenameProductsAndUnknownCodesAreQuoted) {
    EXPECT_EQ(detailed("ZZZZ 1 2 3"), QStringLiteral("Unknown Client \"ZZZZ\""));
    EXPECT_EQ(detailed("TAHC"), QStringLiteral("Chat Client"));
    EXPECT_EQ(detailed(""), QStringLiteral("Unknown Client \"\""));
    writeFile(OverridesFile(), "[Client]\r\nSTAR=Brood Classic\r\nUNKNOWN=Mystery\r\n");
    EXPECT_EQ(detailed("RATS 0 0 1 0"), QStringLiteral("Brood Classic (1 wins)"));
    EXPECT_EQ(detailed("ZZZZ"), QStringLiteral("Mystery \"ZZZZ\""));
    EXPECT_EQ(GetProductName("SEXP"), QStringLiteral("StarCraft BroodWar"));
}
