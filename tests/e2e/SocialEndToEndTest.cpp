// Profiles and clans against the sandbox: the account report on entering
// chat, a resident's profile, the bot's own profile saved and read back; a
// WarCraft III bot founds a clan with nine residents and runs it, and a second
// bot is invited and accepts by a typed line.
#include "chat/TimedEvents.h"
#include "commands/ChatInput.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"

namespace {

class SocialEndToEnd : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        ClanPacket::install();
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setLocalHashing(false);
        settings.setRequestKeys(true);
        TimedEvents::instance().start();
    }
    void TearDown() override {
        TimedEvents::instance().stop();
        for (int i = 1; i <= SlotTable::instance().highestIndex(); ++i)
            EXPECT_FALSE(chat(i).contains(QLatin1String("Unhandled packet")))
                << chat(i).toStdString();
    }

    int connect(const QString& account, const QString& client = QStringLiteral("STAR")) {
        const int i = sandbox.loadProfile(account, QStringLiteral("Sandbox"));
        if (client == QLatin1String("WAR3")) {
            Bots(i).Config.setClient(client);
            Bots(i).Config.setCdkey(QStringLiteral("V9FBR8JC4RJWCGPCMGPT9J2CND"));
        }
        SlotTable::instance().ConnectBot(i);
        EXPECT_TRUE(waitFor([i] { return Bots(i).Channel() == QLatin1String("Sandbox"); }, 20000))
            << chat(i).toStdString();
        return i;
    }
    static QString chat(int i) { return rtbChat(i).text(); }
    static bool saw(int i, const QString& text) {
        return waitFor([&] { return chat(i).contains(text); }, 10000);
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

    SandboxProcess sandbox;
};

TEST_F(SocialEndToEnd, ReportOnEnteringChatAResidentsProfileAndTheBotsOwnSavedAndReadBack) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "3", "--seed", "4"}));
    const QString resident = residents().value(0);
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
}

TEST_F(SocialEndToEnd, AWarcraftBotFoundsAClanRunsItAndASecondBotAcceptsAnInvitation) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "9", "--seed", "2"}));
    const QStringList nine = residents();
    ASSERT_EQ(nine.size(), 9);
    const int chief = connect(QStringLiteral("Chief"), QStringLiteral("WAR3"));
    EXPECT_TRUE(saw(chief, QStringLiteral("Account Information for: Chief")));
    EXPECT_FALSE(chat(chief).contains(QLatin1String("Record: ")));

    ClanNotices& notices = ClanNotices::instance();
    QStringList candidates;
    int founding = -1;
    QObject::connect(&notices, &ClanNotices::candidatesFound,
                     [&](int, int result, const QStringList& names) {
                         if (result == 0) candidates = names;
                     });
    QObject::connect(&notices, &ClanNotices::foundingAnswered,
                     [&](int, int result) { founding = result; });
    ClanPacket::Output_FindCandidates(chief, QStringLiteral("Tst"));
    ASSERT_TRUE(waitFor([&] { return candidates.size() == 9; }));
    ClanPacket::Output_InviteMultiple(chief, QStringLiteral("Testers"), QStringLiteral("Tst"),
                                      candidates);
    ASSERT_TRUE(waitFor([&] { return founding == 0 && lvClan(chief).count() == 10; }));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] You are a Chieftain of Clan Tst.")));
    EXPECT_EQ(Bots(chief).ClanTag(), ClanPacket::CreateClanTag(QStringLiteral("Tst")));
    EXPECT_EQ(lvClan(chief).item(1).text, QLatin1String("Chief"));
    EXPECT_EQ(lvClan(chief).item(1).toolTip, QLatin1String("Chief is the Chieftain."));

    ClanPacket::Output_SetMOTD(chief, QStringLiteral("Practice at nine."));
    const QString shaman = nine[0];
    ClanPacket::Output_SetRank(chief, shaman, 3);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Successfully changed members rank.")));
    const int row = lvClan(chief).find(shaman);
    ASSERT_GT(row, 0);
    EXPECT_TRUE(
        waitFor([&] { return lvClan(chief).item(row).toolTip == shaman + " is a Shaman."; }));
    ClanPacket::Output_RemoveMember(chief, nine[1]);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Successfully removed member from the clan.")));
    EXPECT_TRUE(waitFor([&] { return lvClan(chief).count() == 9; }));
    const QString clan = sandbox.control(QStringLiteral("clan members Tst"));
    EXPECT_TRUE(clan.startsWith(QLatin1String("clan 9 Chief:4 "))) << clan.toStdString();
    EXPECT_TRUE(clan.contains(shaman + QStringLiteral(":3"))) << clan.toStdString();
    EXPECT_TRUE(clan.endsWith(QLatin1String("motd:Practice at nine."))) << clan.toStdString();

    const int recruit = connect(QStringLiteral("Recruit"), QStringLiteral("WAR3"));
    ClanPacket::Output_Invite(chief, QStringLiteral("Recruit"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("type /accept or /decline within 39 seconds.")));
    SendChatLine(recruit, QStringLiteral("/accept"));
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Invitation accepted!")));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You are a New Peon of Clan Tst.")));
    EXPECT_TRUE(waitFor([&] { return lvClan(recruit).count() == 10; }));
    SendChatLine(recruit, QStringLiteral("/accept"));
    EXPECT_TRUE(saw(recruit, QStringLiteral("No clan invitation is waiting for an answer.")));

    ClanPacket::Output_SetChieftain(chief, shaman);
    EXPECT_TRUE(saw(chief, QStringLiteral("[BNET] Successfully changed the clan's chieftain!")));
    EXPECT_TRUE(saw(
        chief,
        QStringLiteral("[BNET] Bot's clan rank was changed by Chief from Chieftain to Grunt.")));
    EXPECT_EQ(Bots(chief).ClanRank(), 2);
    ClanPacket::Output_Disband(chief);
    EXPECT_TRUE(saw(
        chief,
        QStringLiteral("[BNET] Cannot disband the clan, you must be the chieftain of the clan.")));
    ClanPacket::Output_Quit(recruit);
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] Successfully removed member from the clan.")));
    // The removal notice is five bytes: it is cut when the next frame comes.
    SendChatLine(chief, QStringLiteral("Farewell."));
    EXPECT_TRUE(saw(recruit, QStringLiteral("[BNET] You have been removed from the clan!")));
    EXPECT_TRUE(Bots(recruit).ClanTag().isEmpty());
}

TEST_F(SocialEndToEnd, FriendsAddedAndRemovedByChatCommandsReachTheFriendsList) {
    ASSERT_TRUE(sandbox.start({"--control", "--residents", "2", "--seed", "5"}));
    const QStringList two = residents();
    const int i = connect(QStringLiteral("Buddy"));
    for (const QString& name : two)
        SendChatLine(i, QStringLiteral("/f a ") + name);
    ASSERT_TRUE(waitFor([i] { return lvFriends(i).count() == 2; }));
    EXPECT_EQ(lvFriends(i).item(1).text, two[0]);
    SendChatLine(i, QStringLiteral("/f r ") + two[0]);
    ASSERT_TRUE(waitFor([i] { return lvFriends(i).count() == 1; }));
    EXPECT_EQ(lvFriends(i).item(1).text, two[1]);
    EXPECT_TRUE(
        saw(i, QStringLiteral("Removed ") + two[0] + QStringLiteral(" from your friends list.")));
}

} // namespace
