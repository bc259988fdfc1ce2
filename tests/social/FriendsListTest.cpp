#include "social/FriendsList.h"

#include "commands/CommandWrapper.h"
#include "commands/DatabaseWrapper.h"
#include "common/ChatFixture.h"
#include "platform/ListModel.h"
#include "presentation/ChatWriter.h"
#include "shell/DesktopShell.h"

#include <QSignalSpy>

namespace {

class FriendsListTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        slot = loadConnected(QStringLiteral("follower"));
        BotElement& bot = Bots(slot);
        bot.setOnline(true);
        bot.setChannel(QStringLiteral("Lobby"));
        bot.Config.setStalk(false);
        bot.Config.setStalker({});
        bot.Config.setTrigger(QStringLiteral("!"));
        wsBNET(slot).sent.clear();
    }

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
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(0x65, w.payload()));
    }
    void update(const Friend& f) {
        PacketWriter w;
        writeFriend(w, f);
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(0x67, w.payload()));
    }
    void packet(quint8 id, const QByteArray& payload = {}) {
        wsBNET(slot).simulateData(PacketWriter::frameBNCS(id, payload));
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

TEST_F(FriendsListTest, TheListShowsStatusAndWhereaboutsAndFollowsUpdates) {
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
        {StatusColor(Status::Error), "bob is in dnd mode.", "Game: ladder 1v1", "Public Game: ladder 1v1"},
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

    EXPECT_FALSE(askedForList());
    packet(0x68, QByteArray(4, '\0'));
    EXPECT_TRUE(askedForList());
    // An empty list is a five-byte frame, which waits for the next data.
    list({});
    packet(0x00);
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(FriendsListTest, TheStalkedFriendIsFollowedWhereTheyCanBe) {
    QSignalSpy clipboard(&DesktopShell::instance(), &DesktopShell::clipboardTextOffered);
    stalk(QStringLiteral("BOB"));
    list({{"bob", 1, 2, "lobby"}, {"ann", 1, 2, "Far Away"}});
    EXPECT_TRUE(Bots(slot).Queue.isEmpty()) << "already there, in another case";
    ASSERT_EQ(clipboard.count(), 1);
    EXPECT_EQ(clipboard[0][0].toString(), QStringLiteral("lobby"));

    update({"bob", 1, 2, "Op Room"});
    EXPECT_EQ(Bots(slot).Queue, QStringList{"/join Op Room"});
    EXPECT_TRUE(
        rtbChat(slot).text().contains(QStringLiteral("Attempting to follow/stalk user BOB..")));
    update({"bob", 1, 0, ""});
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("bob cannot be stalked this user is offline")));
    EXPECT_TRUE(Bots(slot).Config.Stalk());

    update({"bob", 0, 4, ""});
    EXPECT_FALSE(Bots(slot).Config.Stalk()) << "a private game of a friend who is not mutual";
    stalk(QStringLiteral("bob"));
    update({"bob", 0, 2, ""});
    EXPECT_FALSE(Bots(slot).Config.Stalk()) << "no channel name: not mutual";
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("Stalking is now off.")));
}

TEST_F(FriendsListTest, StalkingCommandsNameTheFriendAndSwitchTheFollowing) {
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
