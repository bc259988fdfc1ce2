#include "chat/SendQueue.h"
#include "chat/TimedEvents.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/TickCount.h"
#include "session/PacketReader.h"

namespace {

class SendQueueTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        sendqueue::QueueBurst() = 0;
        slot = loadConnected(QStringLiteral("queue"));
        Bots(slot).setOnline(true);
    }
    // Runs the 100 ms timer until `until`, noting when each chat line left.
    std::vector<quint32> runUntil(quint32 until) {
        std::vector<quint32> times;
        while (clock.now() < until) {
            const qsizetype before = wsBNET(slot).sent.size();
            TimedEvents::sendTick();
            for (qsizetype i = before; i < wsBNET(slot).sent.size(); ++i)
                times.push_back(clock.now() - start);
            clock.advance(100);
        }
        return times;
    }
    tickcount::ManualClock clock{50000};
    quint32 start = 50000;
    int slot = 0;
};

} // namespace

TEST(SendQueueWaits, FollowTheLengthAndTheBurst) {
    EXPECT_EQ(sendqueue::WaitAfter(10, 1), 1880);
    EXPECT_EQ(sendqueue::WaitAfter(69, 1), 4122);
    EXPECT_EQ(sendqueue::WaitAfter(70, 1), 4500);
    EXPECT_EQ(sendqueue::WaitAfter(0, 1), 1500);
    EXPECT_EQ(sendqueue::WaitAfter(10, 4), 2150);
    EXPECT_EQ(sendqueue::WaitAfter(100, 9), 5700);
}

TEST_F(SendQueueTest, TenCharacterLinesLeaveOnTheirSchedule) {
    for (int i = 0; i < 5; ++i)
        Bots(slot).Queue << QStringLiteral("0123456789");
    const std::vector<quint32> times = runUntil(start + 10000);
    // Each wait must pass fully, and the timer's grain is 100 ms.
    ASSERT_EQ(times.size(), 5u);
    EXPECT_EQ(times[0], 0u);
    EXPECT_EQ(times[1], 1900u);
    EXPECT_EQ(times[2], 3800u);
    EXPECT_EQ(times[3], 5700u);
    EXPECT_EQ(times[4], 5700u + 2200u); // the fourth line made the fifth wait 2150 ms
    PacketReader r;
    r.HandleBuffer(wsBNET(slot).sent[0]);
    EXPECT_EQ(r.ReadBYTE(2), 0x0E);
}

TEST_F(SendQueueTest, AnIdleSlotOnlineResetsTheBurstForAll) {
    const int idle = loadConnected(QStringLiteral("idle"));
    Bots(idle).setOnline(true);
    for (int i = 0; i < 6; ++i)
        Bots(slot).Queue << QStringLiteral("0123456789");
    // The burst never passes 1, so no line ever takes the longer wait.
    const std::vector<quint32> times = runUntil(start + 12000);
    ASSERT_EQ(times.size(), 6u);
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_EQ(times[i] - times[i - 1], 1900u) << i;
}

TEST_F(SendQueueTest, NothingLeavesWhileOfflineAndTheQueueWaits) {
    Bots(slot).Queue << QStringLiteral("hello");
    Bots(slot).setOnline(false);
    runUntil(start + 3000);
    EXPECT_TRUE(wsBNET(slot).sent.isEmpty());
    EXPECT_EQ(Bots(slot).Queue.size(), 1);
}

TEST_F(SendQueueTest, IdleMessagesExpandTheirTokensInOrder) {
    BotElement& bot = Bots(slot);
    bot.setChannel(QStringLiteral("$me"));
    bot.UniqueAccount = QStringLiteral("Bot#2");
    EXPECT_EQ(TimedEvents::ExpandIdleMessage(slot, QStringLiteral("in $ch as $me")),
              QStringLiteral("in Bot#2 as Bot#2"));
    EXPECT_TRUE(TimedEvents::ExpandIdleMessage(slot, QStringLiteral("$v"))
                    .startsWith(QStringLiteral("Corvantide v")));

    bot.Config.setIdleTime(2);
    bot.Config.setIdleMsg(QString());
    TimedEvents& timers = TimedEvents::instance();
    timers.minuteTick();
    timers.minuteTick();
    EXPECT_TRUE(bot.Queue.isEmpty());
    EXPECT_EQ(bot.IdleCounter, 2);
    bot.Config.setIdleMsg(QStringLiteral("idle in $ch"));
    timers.minuteTick();
    EXPECT_EQ(bot.Queue, QStringList{QStringLiteral("idle in Bot#2")});
    EXPECT_EQ(bot.IdleCounter, 0);
}
