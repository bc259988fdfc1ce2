// Profiles, clans and friends against the sandbox: the account report on
// entering chat, a resident's profile, the bot's own profile saved and read
// back; a WarCraft III bot founds a clan and runs it by typed commands; a
// stalked friend is followed.
#include "commands/ChatInput.h"
#include "e2e/BotFixture.h"
#include "platform/ListModel.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"

namespace {

class SocialEndToEnd : public BotFixture {
protected:
    void SetUp() override {
        BotFixture::SetUp();
        ClanPacket::install();
        SettingsWrapper::instance().setRequestKeys(true);
    }
    void TearDown() override {
        BotFixture::TearDown();
        for (int i = 1; i <= SlotTable::instance().highestIndex(); ++i)
            EXPECT_FALSE(chat(i).contains(QLatin1String("Unhandled packet")))
                << chat(i).toStdString();
    }

    int connect(const QString& account, const QString& client = QStringLiteral("STAR")) {
        return inChannel(account, QStringLiteral("Sandbox"), [&](BotElement& bot) {
            if (client != QLatin1String("WAR3")) return;
            bot.Config.setClient(client);
            bot.Config.setCdkey(QStringLiteral("V9FBR8JC4RJWCGPCMGPT9J2CND"));
        });
    }
    // The residents, in the channel and standing still.
    QStringList residents() {
        sandbox.control(QStringLiteral("residents pause"));
        QStringList names;
        for (const QString& w :
             sandbox.control(QStringLiteral("members Sandbox")).split(u' ').mid(2))
            names << w.section(u':', 0, 0);
        return names;
    }
};

// The account report on entering chat, a resident's profile, the bot's own
// saved and read back, and friends added and removed by chat commands.
TEST_F(SocialEndToEnd, ReportProfilesAndFriendsOfABotInChat) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "3", "--seed", "4"}));
    const QStringList three = residents();
    const QString resident = three.value(0);
    const int i = connect(QStringLiteral("Pilot"));
    EXPECT_TRUE(saw(i, QStringLiteral("Account Information for: Pilot")));
    EXPECT_TRUE(saw(i, QStringLiteral("Last Game Played: Never Played (N/A)")));
    EXPECT_TRUE(saw(i, QStringLiteral("Record: 0 wins, 0 losses, 0 disconnects.")));
    EXPECT_TRUE(saw(i, QStringLiteral("Time Logged: 1 days, 2 hours, 3 minutes.")));
    EXPECT_NE(Bots(i).AccountCreated, QLatin1String("N/A"));

    // Without a window the fields are lines of the chat.
    SendChatLine(i, QStringLiteral("/profile ") + resident);
    EXPECT_TRUE(saw(i, QStringLiteral("Profile of ") + resident));
    EXPECT_TRUE(saw(i, QStringLiteral("Location: The sandbox")));

    QStringList shown;
    QString shownFor;
    QObject::connect(&SlotTable::instance(), &SlotTable::profileReceived,
                     [&](int, const QString& account, const QStringList& values) {
                         shownFor = account;
                         shown = values;
                     });
    Bots(i).Connection.Output_WriteProfile(i, {"m", "Harbour town", "Sails at dawn."});
    SendChatLine(i, QStringLiteral("/p"));
    ASSERT_TRUE(waitFor([&] { return !shown.isEmpty(); }));
    EXPECT_EQ(shownFor, QLatin1String("Pilot"));
    EXPECT_EQ(shown, QStringList({"m", "Harbour town", "Sails at dawn."}));
    EXPECT_TRUE(ConnectionWrapper::IsOwnProfile(i, QStringLiteral("pilot")));
    EXPECT_FALSE(ConnectionWrapper::IsOwnProfile(i, resident));

    for (const QString& name : three.mid(0, 2))
        SendChatLine(i, QStringLiteral("/f a ") + name);
    ASSERT_TRUE(waitFor([i] { return lvFriends(i).count() == 2; }));
    EXPECT_EQ(lvFriends(i).item(1).text, three[0]);
    SendChatLine(i, QStringLiteral("/f r ") + three[0]);
    ASSERT_TRUE(waitFor([i] { return lvFriends(i).count() == 1; }));
    EXPECT_EQ(lvFriends(i).item(1).text, three[1]);
    EXPECT_TRUE(
        saw(i, QStringLiteral("Removed ") + three[0] + QStringLiteral(" from your friends list.")));
}

// Typed as on the terminal. The founding and an invitation are answered by a
// second bot; tags of two and three letters travel as servers read them, and
// the chieftain's own rank follows the status notice a change of chieftain brings.
TEST_F(SocialEndToEnd, AWarcraftBotFoundsATwoLetterClanAndRunsItByTypedCommands) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "9", "--seed", "2"}));
    const QStringList nine = residents();
    ASSERT_EQ(nine.size(), 9);
    const int recruit = connect(QStringLiteral("Recruit"), QStringLiteral("WAR3"));
    const int chief = connect(QStringLiteral("Chief"), QStringLiteral("WAR3"));
    EXPECT_TRUE(saw(chief, QStringLiteral("Account Information for: Chief")));
    EXPECT_FALSE(chat(chief).contains(QLatin1String("Record: ")));

    SendChatLine(chief, QStringLiteral("/myclan create Tq"));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Clan tag Tq is free; 10 candidates: ")));
    const QStringList founders = nine.mid(0, 8) << QStringLiteral("Recruit");
    SendChatLine(chief, QStringLiteral("/myclan create Tq ") + founders.join(u',') +
                            QStringLiteral(" The Testers"));
    EXPECT_TRUE(
        saw(recruit, QStringLiteral("[BNET] You have been invited to help create a clan...")));
    SendChatLine(recruit, QStringLiteral("/accept"));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Success, everyone accepted invitation!")));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] You are a Chieftain of Clan Tq.")));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You are a Peon of Clan Tq.")));
    EXPECT_EQ(Bots(chief).ClanTag(), QString::fromLatin1("\0\0qT", 4));
    ASSERT_TRUE(waitFor([&] { return lvClan(chief).count() == 10; }));
    EXPECT_EQ(lvClan(chief).item(1).toolTip, QLatin1String("Chief is the Chieftain."));

    // A member who joins after the list came shows at once.
    SendChatLine(chief, QStringLiteral("/myclan invite ") + nine[8]);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Invitation accepted!")));
    EXPECT_TRUE(waitFor([&] { return lvClan(chief).count() == 11; }));
    SendChatLine(chief, QStringLiteral("/members"));
    EXPECT_TRUE(saw(chief, nine[8] + QStringLiteral(" is a New Peon.")));

    const auto lines = [](int i, const QString& text) { return int(chat(i).count(text)); };
    const auto rankChange = [&](const QString& line, const QString& from, const QString& to) {
        const int before =
            lines(chief, QStringLiteral("[BNET] Successfully changed members rank."));
        SendChatLine(chief, line);
        EXPECT_TRUE(
            saw(recruit, QStringLiteral("[BNET] Bot's clan rank was changed by Chief from ") +
                             from + QStringLiteral(" to ") + to + u'.'));
        EXPECT_EQ(lines(chief, QStringLiteral("[BNET] Successfully changed members rank.")),
                  before + 1);
    };
    rankChange(QStringLiteral("/myclan promote recruit"), QStringLiteral("Peon"),
               QStringLiteral("Grunt"));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Attempting to change Recruit's rank to Grunt.")));
    rankChange(QStringLiteral("/myclan promote Recruit"), QStringLiteral("Grunt"),
               QStringLiteral("Shaman"));
    rankChange(QStringLiteral("/myclan demote Recruit"), QStringLiteral("Shaman"),
               QStringLiteral("Grunt"));
    SendChatLine(chief, QStringLiteral("/myclan promote ") + nine[8]);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Cannot promote ") + nine[8] +
                               QStringLiteral(", a New Peon, as a Chieftain.")));
    SendChatLine(chief, QStringLiteral("/myclan motd Practice at nine."));
    SendChatLine(chief, QStringLiteral("/myclan remove Recruit"));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Successfully removed member from the clan.")));
    // The removal notice is five bytes: it is cut when the next frame comes.
    SendChatLine(chief, QStringLiteral("Farewell."));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You have been removed from the clan!")));
    const QString clan = sandbox.control(QStringLiteral("clan members Tq"));
    EXPECT_TRUE(clan.startsWith(QLatin1String("clan 10 Chief:4 "))) << clan.toStdString();
    EXPECT_TRUE(clan.endsWith(QLatin1String("motd:Practice at nine."))) << clan.toStdString();

    // Padded behind, a three-letter tag read as no tag: the two-letter clan's.
    SendChatLine(recruit, QStringLiteral("/myclan create Xyz"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] Clan tag Xyz is free; ")));

    SendChatLine(chief, QStringLiteral("/myclan invite Recruit"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You have been invited to join a clan...")));
    SendChatLine(recruit, QStringLiteral("/accept"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You are a New Peon of Clan Tq.")));
    EXPECT_TRUE(waitFor([&] { return lvClan(chief).find(QStringLiteral("Recruit")) > 0; }));

    SendChatLine(chief, QStringLiteral("/myclan chieftain ") + nine[0]);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Successfully changed the clan's chieftain!")));
    EXPECT_TRUE(waitFor([&] { return Bots(chief).ClanRank() == 2; }));
    SendChatLine(chief, QStringLiteral("/myclan disband"));
    EXPECT_TRUE(saw(
        chief,
        QStringLiteral("[BNET] Cannot disband the clan, you must be the chieftain of the clan.")));
    SendChatLine(recruit, QStringLiteral("/myclan leave"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] Successfully removed member from the clan.")));
    SendChatLine(chief, QStringLiteral("Farewell again."));
    EXPECT_TRUE(waitFor([&] { return Bots(recruit).ClanTag().isEmpty(); }));
    EXPECT_FALSE(chat(chief).contains(QLatin1String("not authorized")));
}

// One hop of the stalked friend brings friend updates and the list asked on
// its leave, all telling the same place: the bot joins once, and says once
// that the friend went offline.
TEST_F(SocialEndToEnd, AStalkedFriendIsFollowedOnceAHop) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "1", "--seed", "6"}));
    const int shadow = connect(QStringLiteral("Shadow"));
    const int quarry = connect(QStringLiteral("Quarry"));
    SendChatLine(quarry, QStringLiteral("/f a Shadow"));
    SendUserLine(shadow, QStringLiteral("/stalk Quarry"));
    SendUserLine(shadow, QStringLiteral("/stalking on"));
    ASSERT_TRUE(waitFor([&] { return lvFriends(shadow).count() == 1; }));

    SendChatLine(quarry, QStringLiteral("/join Backroom"));
    ASSERT_TRUE(waitFor([&] { return Bots(shadow).Channel() == QLatin1String("Backroom"); }));
    const auto settled = [&](const QString& text) {
        pause(3000); // any further join would have left by now
        return int(chat(shadow).count(text));
    };
    EXPECT_EQ(settled(QStringLiteral("Attempting to follow/stalk user Quarry..")), 1);

    SlotTable::instance().UnloadProfile(QStringLiteral("Quarry"));
    EXPECT_TRUE(saw(shadow, QStringLiteral("Quarry cannot be stalked")));
    EXPECT_EQ(settled(QStringLiteral("Quarry cannot be stalked")), 1) << chat(shadow).toStdString();
}

} // namespace
