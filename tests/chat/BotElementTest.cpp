#include "common/SlotFixture.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "statistics/UserNames.h"

#include <random>

class BotElementTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        slot = loadConnected(QStringLiteral("alpha"));
    }
    BotElement& bot() { return Bots(slot); }
    int slot = 0;
};

TEST_F(BotElementTest, LookUpsAgreeWithAWalkOfTheChannelThroughEveryChange) {
    // Names that share a plain form (characters of one account, case) and
    // names that don't, added and removed at random.
    std::mt19937 rng(3);
    const QStringList pool{"alice", "Bob", "Hero*carol", "Mage*carol", "*carol", "DAVE",
                           "dave",  "eve", "Rogue*eve",  "frank",      "Grace",  "heidi"};
    const auto walk = [&](const QString& name) {
        const QString wanted = ConvertUsername(name, false, -1).toLower();
        for (size_t i = 0; i < bot().Users.size(); ++i)
            if (ConvertUsername(bot().Users[i].Username(), false, -1).toLower() == wanted)
                return int(i) + 1;
        return 0;
    };
    for (int step = 0; step < 3000; ++step) {
        const QString name = pool[int(rng() % pool.size())];
        switch (rng() % 5) {
        case 0:
        case 1:
            bot().userAdd(name, 0, 0, {}, 0);
            break;
        case 2:
            bot().userDel(name);
            break;
        case 3:
            if (rng() % 20 == 0) bot().userClear();
            break;
        default:
            break;
        }
        for (const QString& wanted : pool)
            ASSERT_EQ(bot().UserFind(wanted), walk(wanted))
                << wanted.toStdString() << " at step " << step;
    }
}

TEST_F(BotElementTest, UsersKeepArrivalOrderThroughDeletesAndASecondAddKeepsTheFirst) {
    for (const char* name : {"a", "b", "c", "d"})
        bot().userAdd(name, 0, 0, {}, 0);
    bot().userAdd("A", 2, 20, "second", 2);
    bot().userDel("B");
    bot().userDel("unknown");
    ASSERT_EQ(bot().Users.size(), 3u);
    EXPECT_EQ(bot().UserFind("c"), 2);
    EXPECT_EQ(bot().Users[2].Username(), QStringLiteral("d"));
    EXPECT_EQ(bot().Users[0].UsernameFixed, QStringLiteral("a"));
    EXPECT_EQ(bot().Users[0].Ping, 0);
}

TEST_F(BotElementTest, TheVoidKeepsTheChannelToReturnTo) {
    bot().setChannel("Clan Foo");
    bot().setChannel("The Void");
    EXPECT_EQ(bot().Channel(), QStringLiteral("The Void"));
    EXPECT_EQ(bot().ChannelNonVoid(), QStringLiteral("Clan Foo"));
    bot().setChannel(QString());
    EXPECT_TRUE(bot().ChannelNonVoid().isEmpty());
}

// Going offline forgets what the session showed but keeps the queue for the
// next one; emptying the profile also closes its sockets and clears the queue.
TEST_F(BotElementTest, GoingOfflineEndsTheSessionAndEmptyingTheProfileEmptiesTheSlot) {
    bot().setOnline(true);
    bot().userAdd("x", 0, 0, {}, 0);
    lvUsers(slot).add(ListItem::withText(QStringLiteral("x")));
    lvFriends(slot).add(ListItem::withText(QStringLiteral("f")));
    bot().setChannel("Public");
    bot().setClanTag("ABC");
    bot().setClanRank(3);
    bot().Queue << "hello";

    bot().setOnline(false);
    EXPECT_FALSE(bot().Online());
    EXPECT_TRUE(bot().Users.empty());
    EXPECT_EQ(lvUsers(slot).count(), 0);
    EXPECT_EQ(lvFriends(slot).count(), 0);
    EXPECT_TRUE(bot().Channel().isEmpty());
    EXPECT_TRUE(bot().ClanTag().isEmpty());
    EXPECT_EQ(bot().ClanRank(), 0);
    EXPECT_EQ(bot().Queue, QStringList{"hello"});

    // Going online again touches nothing but the flag; emptying the profile cleans again.
    bot().userAdd("y", 0, 0, {}, 0);
    bot().setOnline(true);
    EXPECT_EQ(bot().Users.size(), 1u);
    bot().CanConnect = true;
    bot().InBNCS.append("\xff\x0f");
    bot().InBNLS.append("\x03");
    bot().QueueWait = 1500;
    rtbChat(slot).append(u"text\r\n", {});
    bot().setProfile(QString());
    EXPECT_TRUE(bot().Users.empty());
    EXPECT_FALSE(bot().IsLoaded);
    EXPECT_FALSE(bot().Online());
    EXPECT_FALSE(bot().CanConnect);
    EXPECT_TRUE(bot().Queue.isEmpty());
    EXPECT_TRUE(bot().InBNCS.isEmpty());
    EXPECT_TRUE(bot().InBNLS.isEmpty());
    EXPECT_EQ(bot().QueueWait, 0);
    EXPECT_EQ(wsBNET(slot).State(), SocketControl::Closed);
    EXPECT_EQ(wsBNLS(slot).State(), SocketControl::Closed);
    EXPECT_TRUE(bot().Profile().isEmpty());
    // The queue's clearing is the one line left in the emptied view, behind
    // its timestamp.
    const QString text = rtbChat(slot).text();
    EXPECT_TRUE(text.endsWith(QStringLiteral("Cleared the queue.\r\n"))) << text.toStdString();
    EXPECT_EQ(text.count(QStringLiteral("\r\n")), 1);
}
