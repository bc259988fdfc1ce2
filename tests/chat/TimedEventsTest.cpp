// The timers run on the tick counter, so a hand-driven clock drives them all:
// each routine comes at its period, across the counter's wrap, and does its
// work on the slots it is meant for.
#include "chat/TimedEvents.h"

#include "chat/SendQueue.h"
#include "common/ChatFixture.h"
#include "common/SandboxProcess.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "presentation/Theme.h"
#include "session/PacketReader.h"

namespace {

class TimedEventsTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setFloodMode(0);
        settings.setVoidView(false);
        settings.setAutoCQ(false);
        slot = loadConnected(QStringLiteral("timed"));
        BotElement& bot = Bots(slot);
        bot.setOnline(true);
        bot.UniqueAccount = QStringLiteral("Timed");
        bot.Config.setIdleTime(0);
    }
    void TearDown() override { TimedEvents::instance().stop(); }

    void startTimers() {
        start = clock.now();
        TimedEvents::instance().start();
    }
    // Moves the clock on to `at` ms after the start in steps of the finest
    // timer, letting the timers look at it after each.
    void runTo(quint32 at) {
        while (quint32(clock.now() - start) < at) {
            clock.advance(std::min<quint32>(50, at - quint32(clock.now() - start)));
            TimedEvents::instance().pulse();
            noteSent();
        }
    }
    void event(quint32 id, const QString& user, const QString& text = {}, quint32 flags = 0) {
        wsBNET(slot).simulateData(chatEventFrame(id, flags, 20, user, text));
    }
    // What left the socket since the last look, by time after the start.
    void noteSent() {
        QList<QByteArray>& sent = wsBNET(slot).sent;
        for (const QByteArray& frame : sent) {
            PacketReader r;
            r.HandleBuffer(frame);
            const quint8 id = r.ReadBYTE(2);
            r.Skip(4);
            const quint32 at = clock.now() - start;
            if (id == 0x00)
                keepAlives.push_back(at);
            else if (id == 0x0E)
                lines.push_back({at, r.ReadSTRING()});
        }
        sent.clear();
    }
    // The time between each chat line and the next.
    std::vector<quint32> gaps() const {
        std::vector<quint32> out;
        for (size_t i = 1; i < lines.size(); ++i)
            out.push_back(lines[i].first - lines[i - 1].first);
        return out;
    }
    quint32 colorOf(const QString& user) {
        const ListModel& list = lvUsers(slot);
        for (int i = 1; i <= list.count(); ++i)
            if (list.item(i).tag == user) return list.item(i).color;
        return 0;
    }

    // Just before the counter wraps, so that every period crosses it.
    tickcount::ManualClock clock{0xFFFFFFFFu - 30000};
    quint32 start = 0;
    int slot = 0;
    std::vector<quint32> keepAlives;
    std::vector<std::pair<quint32, QString>> lines;
};

} // namespace

TEST_F(TimedEventsTest, EachRoutineComesAtItsPeriodAcrossTheCountersWrap) {
    BotElement& bot = Bots(slot);
    bot.setChannel(QStringLiteral("The Void"));
    bot.Config.setIdleTime(1);
    bot.Config.setIdleMsg(QStringLiteral("idle in $ch"));
    startTimers();
    runTo(120100);

    EXPECT_EQ(keepAlives, (std::vector<quint32>{40000, 80000, 120000}));
    std::vector<quint32> unignores;
    std::vector<quint32> idles;
    for (const auto& [at, text] : lines) {
        if (text == QLatin1String("/unignore Timed")) unignores.push_back(at);
        if (text == QLatin1String("idle in The Void")) idles.push_back(at);
    }
    // Each line leaves on the send step after it was queued, unless the line
    // before holds it back: the idle message goes first at the full minute.
    EXPECT_EQ(idles, (std::vector<quint32>{60100, 120100}));
    ASSERT_EQ(unignores.size(), 9u);
    EXPECT_EQ(unignores[0], 12100u);
    EXPECT_EQ(unignores[3], 48100u);
    EXPECT_GT(unignores[4], 60100u + 2000u); // behind the idle line's wait
    EXPECT_EQ(unignores[5], 72100u);

    // Outside The Void the twelve-second routine has nothing to say.
    runTo(125000);
    bot.setChannel(QStringLiteral("Lobby"));
    lines.clear();
    runTo(185000);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].second, QStringLiteral("idle in Lobby"));
    bot.Config.setIdleTime(0);
    lines.clear();
    runTo(250000);
    EXPECT_TRUE(lines.empty()) << "an idle time of 0 sends nothing";
    bot.Config.setIdleTime(1);
    bot.Config.setIdleMsg(QString());
    TimedEvents::instance().minuteTick();
    EXPECT_TRUE(bot.Queue.isEmpty()) << "an empty idle message queues nothing";

    // Tokens are expanded in order, so a channel named "$me" shows the account.
    bot.setChannel(QStringLiteral("$me"));
    EXPECT_EQ(TimedEvents::ExpandIdleMessage(slot, QStringLiteral("in $ch as $me")),
              QStringLiteral("in Timed as Timed"));
    EXPECT_TRUE(TimedEvents::ExpandIdleMessage(slot, QStringLiteral("$v"))
                    .startsWith(QStringLiteral("Corvantide v")));
}

// The status line counts the channel's operators and representatives; the
// queue is cleared every half hour when asked; in The Void a Diablo II bot
// asks to see its own account by its star form.
TEST_F(TimedEventsTest, TheStatusLineTheHalfHoursClearingAndTheVoidsRealmName) {
    SlotTable::instance().SelectBot(slot);
    Bots(slot).setChannel(QStringLiteral("Lobby"));
    for (const auto& [name, flags] :
         {std::pair{"op", 0x02}, {"op2", 0x02}, {"rep", 0x03}, {"x", 0}})
        event(1, QLatin1String(name), QStringLiteral("RATS 0"), quint32(flags));
    TimedEvents& timers = TimedEvents::instance();
    timers.statusTick();
    EXPECT_EQ(timers.StatusLine(), QStringLiteral("Online in channel Lobby with 2 operators and 1 "
                                                  "Blizzard representatives."));

    SettingsWrapper::instance().setAutoCQ(true);
    Bots(slot).Queue << QStringLiteral("waiting");
    for (int i = 0; i < 30 && !Bots(slot).Queue.isEmpty(); ++i)
        timers.minuteTick();
    Bots(slot).Queue << QStringLiteral("waiting");
    int minutes = 0;
    for (; minutes < 100 && !Bots(slot).Queue.isEmpty(); ++minutes)
        timers.minuteTick();
    EXPECT_EQ(minutes, 30);
    SettingsWrapper::instance().setAutoCQ(false);

    Bots(slot).setChannel(QStringLiteral("The Void"));
    Bots(slot).Config.setClient(QStringLiteral("D2DV"));
    TimedEvents::voidTick();
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/unignore *Timed")});
}

TEST(SendQueueWaits, FollowTheLengthAndTheBurst) {
    EXPECT_EQ(sendqueue::WaitAfter(10, 1), 1880);
    EXPECT_EQ(sendqueue::WaitAfter(69, 1), 4122);
    EXPECT_EQ(sendqueue::WaitAfter(70, 1), 4500);
    EXPECT_EQ(sendqueue::WaitAfter(0, 1), 1500);
    EXPECT_EQ(sendqueue::WaitAfter(10, 4), 2150);
    EXPECT_EQ(sendqueue::WaitAfter(100, 9), 5700);
}

// Each wait must pass fully, and the send step's grain is 100 ms.
TEST_F(TimedEventsTest, QueuedLinesLeaveOnTheirScheduleAndAnIdleSlotResetsTheBurst) {
    sendqueue::QueueBurst() = 0;
    for (int i = 0; i < 5; ++i)
        Bots(slot).Queue << QStringLiteral("0123456789");
    startTimers();
    runTo(12000);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0].first, 100u) << "the first line leaves on the first send step";
    // The fourth line made the fifth wait 2150 ms.
    EXPECT_EQ(gaps(), (std::vector<quint32>{1900, 1900, 1900, 2200}));

    // Another slot online with nothing to send resets the burst on every
    // step, so no line ever takes the longer wait.
    const int idle = loadConnected(QStringLiteral("idle"));
    Bots(idle).setOnline(true);
    lines.clear();
    for (int i = 0; i < 6; ++i)
        Bots(slot).Queue << QStringLiteral("0123456789");
    runTo(26000);
    EXPECT_EQ(gaps(), std::vector<quint32>(5, 1900));

    Bots(slot).Queue << QStringLiteral("hello");
    Bots(slot).setOnline(false);
    lines.clear();
    runTo(30000);
    EXPECT_TRUE(lines.empty()) << "nothing leaves while offline";
    EXPECT_EQ(Bots(slot).Queue.size(), 1);
}

TEST_F(TimedEventsTest, AStallRunsARoutineOnceAndAClockSetBackStartsAfresh) {
    Bots(slot).Config.setIdleTime(100);
    startTimers();
    clock.advance(5 * 60000 + 30000);
    TimedEvents::instance().pulse();
    EXPECT_EQ(Bots(slot).IdleCounter, 1);
    // The phase holds: the next minute is due at the six-minute mark.
    runTo(5 * 60000 + 59950);
    EXPECT_EQ(Bots(slot).IdleCounter, 1);
    runTo(6 * 60000);
    EXPECT_EQ(Bots(slot).IdleCounter, 2);

    clock.set(clock.now() - 3600000);
    start = clock.now();
    TimedEvents::instance().pulse();
    EXPECT_EQ(Bots(slot).IdleCounter, 2);
    keepAlives.clear();
    runTo(40000);
    EXPECT_EQ(keepAlives, std::vector<quint32>{40000});
    EXPECT_EQ(Bots(slot).IdleCounter, 2);
    runTo(60000);
    EXPECT_EQ(Bots(slot).IdleCounter, 3);
}

// A join and a talk are held for the flood delay and shown within the delay
// timer's grain after it.
TEST_F(TimedEventsTest, HeldEventsShowWithinTheDelayTimersGrain) {
    SettingsWrapper::instance().setFloodMode(1000);
    startTimers();
    runTo(20);
    event(2, QStringLiteral("joiner"), QStringLiteral("RATS 0"));
    event(5, QStringLiteral("someone"), QStringLiteral("held back"));
    runTo(1020);
    EXPECT_FALSE(rtbChat(slot).text().contains(QStringLiteral("held back")));
    EXPECT_EQ(lvUsers(slot).count(), 0);
    runTo(1070);
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("held back")));
    EXPECT_EQ(lvUsers(slot).count(), 1);
}

TEST_F(TimedEventsTest, QuietUsersTakeTheIdleColourWithinTenSecondsOnScreenOnly) {
    const int other = loadConnected(QStringLiteral("elsewhere"));
    Bots(other).setOnline(true);
    SlotTable::instance().SelectBot(slot);
    startTimers();
    runTo(3000);
    event(1, QStringLiteral("quiet"), QStringLiteral("RATS 0"));
    event(1, QStringLiteral("chatty"), QStringLiteral("RATS 0"));
    wsBNET(other).simulateData(chatEventFrame(1, 0, 20, QStringLiteral("quiet"), "RATS 0"));
    const ThemeRecord& theme = CurrentTheme();
    EXPECT_EQ(colorOf(QStringLiteral("quiet")), theme.userList.Normal);
    runTo(300000);
    event(5, QStringLiteral("chatty"), QStringLiteral("still here"));

    runTo(3000 + 600000 - 50);
    EXPECT_EQ(colorOf(QStringLiteral("quiet")), theme.userList.Normal);
    runTo(3000 + 600000 + 10000);
    EXPECT_EQ(colorOf(QStringLiteral("quiet")), theme.userList.Idle_10min);
    EXPECT_EQ(colorOf(QStringLiteral("chatty")), theme.userList.Normal);
    const ListModel& hidden = lvUsers(other);
    ASSERT_EQ(hidden.count(), 1);
    EXPECT_EQ(hidden.item(1).color, theme.userList.Normal);
}

namespace {

// On the real clock: a slot in chat with nothing to send or show leaves the
// loop asleep until its keep-alive; a line queued from outside any event
// still leaves at once, and the loop goes back to sleep after it.
class IdleTimersTest : public ChatFixture {
protected:
    void TearDown() override { TimedEvents::instance().stop(); }
};

} // namespace

TEST_F(IdleTimersTest, AnIdleBotSleepsUntilWorkComes) {
    SettingsWrapper::instance().setFloodMode(1000);
    const int slot = loadConnected(QStringLiteral("sleeper"));
    Bots(slot).setOnline(true);
    TimedEvents& timers = TimedEvents::instance();
    timers.start();
    const auto asleep = [&] { return waitFor([&] { return timers.msUntilWake() > 30000; }, 2000); };
    EXPECT_TRUE(asleep()) << timers.msUntilWake();

    Bots(slot).Queue << QStringLiteral("hello");
    EXPECT_TRUE(waitFor([&] { return !wsBNET(slot).sent.isEmpty(); }, 1000));
    EXPECT_TRUE(asleep()) << timers.msUntilWake();

    // A held event wakes the delayed path until it is shown.
    wsBNET(slot).simulateData(
        chatEventFrame(5, 0, 0, QStringLiteral("Someone"), QStringLiteral("hi there")));
    EXPECT_TRUE(waitFor([&] { return timers.msUntilWake() <= 50; }, 500));
    EXPECT_TRUE(
        waitFor([&] { return rtbChat(slot).text().contains(QStringLiteral("hi there")); }, 3000));
    EXPECT_TRUE(asleep()) << timers.msUntilWake();
}
