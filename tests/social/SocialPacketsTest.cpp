#include "commands/CommandWrapper.h"
#include "commands/DatabaseWrapper.h"
#include "common/ChatFixture.h"
#include "platform/ListModel.h"
#include "presentation/ChatWriter.h"
#include "shell/DesktopShell.h"
#include "social/ClanPacket.h"
#include "social/FriendsList.h"

#include <QSignalSpy>
#include <functional>

namespace {

// A slot online in the channel Lobby as the account Clansman, and the clan
// and friends packets as the server sends them.
class SocialTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        ClanPacket::install();
        slot = loadConnected(QStringLiteral("clansman"));
        BotElement& bot = Bots(slot);
        bot.setOnline(true);
        bot.setChannel(QStringLiteral("Lobby"));
        bot.Config.setAccount(QStringLiteral("Clansman"));
        bot.Config.setStalk(false);
        bot.Config.setStalker({});
        bot.Config.setTrigger(QStringLiteral("!"));
        wsBNET(slot).sent.clear();
    }
    void packet(quint8 id, const QByteArray& payload = {}) {
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(id, payload));
    }
    void arrive(quint8 id, const PacketWriter& w) { packet(id, w.payload()); }
    QString lastLine() const {
        return rtbChat(slot).text().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).last();
    }

    // Clans.
    void joinClan(quint8 rank) {
        Bots(slot).setClanTag(ClanPacket::CreateClanTag(QStringLiteral("Tst")));
        Bots(slot).setClanRank(rank);
    }
    QList<int> sentIds() const {
        QList<int> ids;
        for (const QByteArray& frame : wsBNET(slot).sent)
            ids << quint8(frame[1]);
        return ids;
    }

    // Friends.
    struct Friend {
        const char* name;
        quint8 status;
        quint8 location;
        const char* where;
    };
    static void writeFriend(PacketWriter& w, const Friend& f) {
        w.WriteSTRING(QLatin1String(f.name));
        w.WriteBYTE(f.status);
        w.WriteBYTE(f.location);
        w.WriteDWORD(0x53544152); // STAR
        w.WriteSTRING(QLatin1String(f.where));
    }
    void list(std::initializer_list<Friend> friends) {
        PacketWriter w;
        w.WriteBYTE(quint8(friends.size()));
        for (const Friend& f : friends)
            writeFriend(w, f);
        arrive(0x65, w);
    }
    void update(const Friend& f) {
        PacketWriter w;
        writeFriend(w, f);
        arrive(0x67, w);
    }
    QStringList names() {
        QStringList out;
        for (int i = 1; i <= lvFriends(slot).count(); ++i)
            out << lvFriends(slot).item(i).text;
        return out;
    }
    bool askedForList() {
        for (const QByteArray& frame : wsBNET(slot).sent)
            if (quint8(frame[1]) == 0x65) return true;
        return false;
    }
    void stalk(const QString& name) {
        Bots(slot).Config.setStalk(true);
        Bots(slot).Config.setStalker(name);
    }

    int slot = 0;
};

TEST_F(SocialTest, LocalChecksRefuseWithoutSendingAndTagsTravelTurnedRound) {
    ClanPacket::Output_Disband(slot);
    EXPECT_EQ(lastLine(), "[BNET] Cannot perform clan action, you are not the member of a clan.");
    joinClan(1);
    ClanPacket::Output_Invite(slot, {});
    EXPECT_EQ(lastLine(), "[BNET] Cannot invite null username.");
    joinClan(2);
    ClanPacket::Output_Invite(slot, QStringLiteral("someone"));
    EXPECT_EQ(lastLine(),
              "[BNET] Only Cheiftain's and Shaman's can invite users to join the clan.");
    joinClan(3);
    ClanPacket::Output_SetRank(slot, QStringLiteral("other"), 3);
    EXPECT_EQ(
        lastLine(),
        "[BNET] Cannot change rank, you must be a chieftain to change another shamans' rank.");
    EXPECT_TRUE(wsBNET(slot).sent.isEmpty());

    ClanPacket::Output_Invite(slot, QStringLiteral("someone"));
    EXPECT_EQ(lastLine(), "[BNET] Invitation sent to someone to join Clan Tst.") << "a shaman";
    ClanPacket::Output_SetRank(slot, QStringLiteral("other"), 2);
    EXPECT_EQ(lastLine(), "[BNET] Attempting to change other's rank to Grunt.");
    ClanPacket::Output_Quit(slot);
    ASSERT_EQ(sentIds(), QList<int>({0x77, 0x7A, 0x78}));
    // The quit names the account as configured, behind the cookie.
    EXPECT_EQ(wsBNET(slot).sent[2].mid(8), QByteArray("Clansman", 9));

    // Right-aligned: the DWORD holds the text big-endian. Either padding reads back.
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("AB")), QString::fromLatin1("\0\0BA", 4));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABC")), QString::fromLatin1("\0CBA", 4));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABCD")), QStringLiteral("DCBA"));
    EXPECT_EQ(ClanPacket::CreateClanTag(QStringLiteral("ABCDE")), QStringLiteral("EDCB"));
    EXPECT_EQ(ClanPacket::ShowClanTag(QString::fromLatin1("BA\0\0", 4)), QStringLiteral("AB"));
    EXPECT_EQ(ClanPacket::ShowClanTag(QString::fromLatin1("\0\0BA", 4)), QStringLiteral("AB"));

    // Who may ask what, by rank: shamans and the chieftain invite, set the
    // message and remove; the chieftain alone disbands and hands the clan on.
    const std::pair<const char*, std::function<void()>> actions[] = {
        {"invite", [&] { ClanPacket::Output_Invite(slot, QStringLiteral("someone")); }},
        {"motd", [&] { ClanPacket::Output_SetMOTD(slot, QStringLiteral("hi")); }},
        {"remove", [&] { ClanPacket::Output_RemoveMember(slot, QStringLiteral("someone")); }},
        {"disband", [&] { ClanPacket::Output_Disband(slot); }},
        {"chieftain", [&] { ClanPacket::Output_SetChieftain(slot, QStringLiteral("someone")); }},
    };
    const char* allowed[] = {"", "", "invite motd remove", "invite motd remove disband chieftain"};
    for (quint8 rank = 1; rank <= 4; ++rank) {
        joinClan(rank);
        QStringList asked;
        for (const auto& [name, act] : actions) {
            const qsizetype before = wsBNET(slot).sent.size();
            act();
            if (wsBNET(slot).sent.size() > before) asked << QLatin1String(name);
        }
        EXPECT_EQ(asked.join(u' '), QLatin1String(allowed[rank - 1])) << "rank " << int(rank);
    }
}

TEST_F(SocialTest, MemberListPutsTheChieftainFirstAndNoticesKeepItCurrent) {
    joinClan(4);
    PacketWriter list;
    list.WriteDWORD(0);
    list.WriteBYTE(3);
    for (const auto& [name, rank] : {std::pair{"Anna", 0}, {"Boss", 4}, {"Carl", 2}}) {
        list.WriteSTRING(QLatin1String(name));
        list.WriteBYTE(quint8(rank));
        list.WriteBYTE(1);
        list.WriteSTRING(QString());
    }
    arrive(0x7D, list);
    ListModel& clan = lvClan(slot);
    ASSERT_EQ(clan.count(), 3);
    EXPECT_EQ(clan.item(1).text, "Boss");
    EXPECT_EQ(clan.item(2).iconKey, "ClanRank1");
    EXPECT_EQ(clan.item(2).toolTip, "Anna is a New Peon.");

    // A member who joined after the list came is told by a status notice alone.
    PacketWriter newcomer;
    newcomer.WriteSTRING(QStringLiteral("Dora"));
    newcomer.WriteBYTE(0);
    newcomer.WriteBYTE(1);
    newcomer.WriteSTRING(QString());
    arrive(0x7F, newcomer);
    ASSERT_EQ(clan.count(), 4);
    EXPECT_EQ(clan.item(4).toolTip, "Dora is a New Peon.");

    // (Being removed oneself is the end-to-end social test's.) A removal
    // notice that says no keeps the clan.
    PacketWriter notRemoved;
    notRemoved.WriteBYTE(0);
    arrive(0x76, notRemoved);
    PacketWriter gone;
    gone.WriteSTRING(QStringLiteral("Carl"));
    arrive(0x7E, gone);
    EXPECT_FALSE(Bots(slot).ClanTag().isEmpty());
    EXPECT_EQ(clan.count(), 3);
    EXPECT_EQ(clan.find(QStringLiteral("Carl")), 0);
    EXPECT_FALSE(rtbChat(slot).text().contains(QLatin1String("Unhandled")));
}

TEST_F(SocialTest, AccountReportShowsShortValuesAsNotAvailable) {
    Bots(slot).Config.setClient(QStringLiteral("WAR3"));
    Bots(slot).ProfileType = 1;
    PacketWriter w;
    w.WriteVOID(QByteArray(12, '\0'));
    for (const char* value : {"Clansman", "", "30000000 0", "x", "0"})
        w.WriteSTRING(QLatin1String(value));
    arrive(0x26, w);
    const BotElement& bot = Bots(slot);
    EXPECT_EQ(bot.AccountCreated, "N/A");
    EXPECT_NE(bot.LastLogon, "N/A");
    EXPECT_EQ(bot.LastLogoff, "N/A");
    EXPECT_EQ(bot.AccountLogged, "N/A");
    EXPECT_EQ(bot.ProfileType, 0);
    EXPECT_EQ(lastLine(), "Time Logged: N/A");
}

TEST_F(SocialTest, TheListShowsStatusAndWhereaboutsAndFollowsUpdates) {
    list({{"ann", 1, 2, "Lobby"},
          {"bob", 2, 3, "ladder 1v1"},
          {"cy", 0, 0, ""},
          {"dee", 4, 2, ""},
          {"eve", 3, 5, "secret"},
          {"fay", 0, 6, "moon"}});
    ASSERT_EQ(names(), (QStringList{"ann", "bob", "cy", "dee", "eve", "fay"}));
    const ListModel& friends = lvFriends(slot);
    struct Row {
        quint32 color;
        const char *toolTip, *subText, *subToolTip;
    };
    const quint32 offline = CurrentTheme().interface.ForeColor;
    const quint32 online = StatusColor(Status::Information);
    const Row rows[] = {
        {StatusColor(Status::Success), "ann is a mutual friend.", "Channel: Lobby",
         "Channel: Lobby"},
        {StatusColor(Status::Error), "bob is in dnd mode.", "Game: ladder 1v1",
         "Public Game: ladder 1v1"},
        {offline, "cy is offline.", "", ""},
        {online, "dee is away.", "Private Channel", "Private Channel"},
        // A combined status says nothing; an unknown location adds nothing.
        {offline, "", "Game: secret", "Private Game: secret"},
        {online, "fay is online.", "", ""},
    };
    for (int i = 1; i <= 6; ++i) {
        SCOPED_TRACE(friends.item(i).text.toStdString());
        const Row& row = rows[i - 1];
        EXPECT_EQ(friends.item(i).iconKey, QStringLiteral("STAR"));
        EXPECT_EQ(friends.item(i).color, row.color);
        EXPECT_EQ(friends.item(i).toolTip, QLatin1String(row.toolTip));
        EXPECT_EQ(friends.item(i).subText, QLatin1String(row.subText));
        EXPECT_EQ(friends.item(i).subToolTip, QLatin1String(row.subToolTip));
    }

    // An update moves the friend to the end; a move keeps what the item says.
    update({"ann", 0, 1, ""});
    EXPECT_EQ(names(), (QStringList{"bob", "cy", "dee", "eve", "fay", "ann"}));
    EXPECT_EQ(friends.item(6).subText, QStringLiteral("Not in chat"));
    packet(0x69, QByteArray("\x05\x00", 2));
    EXPECT_EQ(names(), (QStringList{"ann", "bob", "cy", "dee", "eve", "fay"}));
    EXPECT_EQ(friends.item(1).subText, QStringLiteral("Not in chat"));
    EXPECT_EQ(friends.item(1).subToolTip, QStringLiteral("Not in chat."));
    // A private game's name is not told.
    update({"ann", 0, 4, "hidden"});
    EXPECT_EQ(friends.item(6).subText, QStringLiteral("Private Game"));
    EXPECT_EQ(friends.item(6).subToolTip, QStringLiteral("Private Game"));

    EXPECT_FALSE(askedForList());
    packet(0x68, QByteArray(4, '\0'));
    EXPECT_TRUE(askedForList());
    // An empty list is a five-byte frame, which waits for the next data.
    list({});
    packet(0x00);
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(SocialTest, TheStalkedFriendIsFollowedWhereTheyCanBe) {
    QSignalSpy clipboard(&DesktopShell::instance(), &DesktopShell::clipboardTextOffered);
    stalk(QStringLiteral("BOB"));
    list({{"bob", 1, 2, "lobby"}, {"ann", 1, 2, "Far Away"}});
    EXPECT_TRUE(Bots(slot).Queue.isEmpty()) << "already there, in another case";
    ASSERT_EQ(clipboard.count(), 1);
    EXPECT_EQ(clipboard[0][0].toString(), QStringLiteral("lobby"));

    // (A hop to another channel and going offline are the end-to-end social
    // test's.) Offline, the stalking stays on.
    update({"bob", 1, 0, ""});
    EXPECT_TRUE(Bots(slot).Config.Stalk());

    update({"bob", 0, 4, ""});
    EXPECT_FALSE(Bots(slot).Config.Stalk()) << "a private game of a friend who is not mutual";
    stalk(QStringLiteral("bob"));
    update({"bob", 0, 2, ""});
    EXPECT_FALSE(Bots(slot).Config.Stalk()) << "no channel name: not mutual";
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("Stalking is now off.")));
}

TEST_F(SocialTest, StalkingCommandsNameTheFriendAndSwitchTheFollowing) {
    Bots(slot).setDatabase(QStringLiteral("stalkers"));
    DatabaseWrapper().AddUser(slot, QStringLiteral("Boss"), 80);
    const auto say = [&](const char* line) {
        Bots(slot).Queue.clear();
        CommandWrapper().SearchCommands(slot, QStringLiteral("boss"), QLatin1String(line), false);
        return Bots(slot).Queue;
    };
    EXPECT_EQ(say("stalk /ME"),
              (QStringList{"The bot is now stalking 'Boss', however stalking is off, type "
                           "!stalking on.",
                           "/f a Boss"}));
    EXPECT_EQ(Bots(slot).Config.Stalker(), QStringLiteral("Boss"));
    EXPECT_EQ(say("stalking On"), QStringList{"Stalking is set to on, bot is stalking Boss."});
    list({{"ann", 1, 2, "Lobby"}});
    EXPECT_EQ(say("stalk ANN and more"), QStringList{"The bot is now stalking 'ANN'."});
    EXPECT_EQ(say("stalking maybe").value(0).left(26),
              QStringLiteral("Invalid stalking option, p"));
    EXPECT_EQ(say("stalking off"), QStringList{"Stalking is set to off."});

    for (int i = 0; i < kFriendsLimit; ++i)
        UpdateFriend(slot, {QStringLiteral("f%1").arg(i), 0, 1, 0, {}});
    EXPECT_EQ(say("stalk zed").value(1),
              QStringLiteral("Cannot add stalked user to friends list, friends list limit has "
                             "been reached."));
    wsBNET(slot).sent.clear();
    EXPECT_TRUE(say("follow").isEmpty());
    EXPECT_TRUE(askedForList());
}

} // namespace
