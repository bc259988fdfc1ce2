// A burst of lines through the send queue while the sandbox enforces its
// flood budget: the bot is never disconnected, and the gaps between lines as
// the server saw them follow the queue's formula to one tick of the send step.
// The lines are as short as they can be, the hardest case for the budget.
// The formula settles after the fourth line of a burst, and each wait is
// longer than the line's cost to the budget, so every line finds the budget
// as the one before it did: eight lines (about thirteen seconds) cover every
// wait the formula gives, and a longer run repeats the last.
#include "chat/SendQueue.h"
#include "e2e/BotFixture.h"

using FloodEndToEnd = BotFixture;

TEST_F(FloodEndToEnd, ABurstLeavesAtTheQueuesPaceWithoutADisconnect) {
    ASSERT_TRUE(sandbox.start(traced()));
    const int i = inChannel(QStringLiteral("flooder"), QStringLiteral("Flood"));

    constexpr int kLines = 8;
    constexpr int kLength = 2;
    for (int n = 0; n < kLines; ++n)
        Bots(i).Queue << QString::number(n, 36).rightJustified(kLength, u'0');
    const bool drained = waitFor([&] { return Bots(i).Queue.isEmpty(); }, 3 * 60 * 1000);
    pause(500);
    ASSERT_TRUE(drained) << Bots(i).Queue.size() << " lines left";
    EXPECT_TRUE(Bots(i).Online());
    EXPECT_FALSE(chat(i).contains(QStringLiteral("Disconnected")));

    // Arrival times at the server of the chat lines.
    std::vector<qint64> times;
    for (const TracedFrame& t : readTrace(tracePath()))
        if (t.link == "bncs" && t.direction == "in" && t.id == "0x0e") times.push_back(t.ms);
    ASSERT_EQ(times.size(), size_t(kLines));
    // A line leaves on the first send step after the wait of the one before
    // has passed; with the queue never idle the burst passes 4 at the fourth
    // line. Steps come every 100 ms, so each gap lies within one step of the
    // wait rounded up to the step.
    constexpr qint64 kStep = 100;
    for (size_t n = 1; n < times.size(); ++n) {
        const qint64 wait = sendqueue::WaitAfter(kLength, int(n));
        const qint64 paced = (wait / kStep + 1) * kStep;
        const qint64 gap = times[n] - times[n - 1];
        EXPECT_LE(std::abs(gap - paced), kStep)
            << "line " << n << ": " << gap << " ms after a wait of " << wait;
    }
}
