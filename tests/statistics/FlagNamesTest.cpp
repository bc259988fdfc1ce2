#include "statistics/FlagNames.h"

#include "commands/AliasesAndGroups.h"
#include "common/ChatFixture.h"
#include "statistics/UserNames.h"

class FlagNamesTest : public ChatFixture {};

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
        {0x1, "Rep"},          {0x2, "Mod"},      {0x4, "Speaker"},      {0x8, "Admin"},
        {0x10, "UDP"},         {0x20, "Squelched"}, {0x40, "Guest"},     {0x100, "Beep"},
        {0x200, "PGL"},        {0x400, "PGL Official"}, {0x800, "KBK"},  {0x1000, "KBK Official"},
        {0x100000, "Jailed"},  {0x200000, "GF"}};
    for (const auto& [bit, name] : userFlags)
        EXPECT_EQ(GetUserFlagNames(bit), QLatin1String(name)) << bit;
    const std::pair<quint32, const char*> channelFlags[] = {
        {0x1, "Public"}, {0x2, "Moderated"}, {0x4, "Locked"},     {0x8, "Silent"},
        {0x10, "System"}, {0x20, "Product"}, {0x1000, "Global"}};
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
