// Forty lines through the send queue while the sandbox enforces its flood
// budget: the bot is never disconnected, and the gaps between lines as the
// server saw them follow the queue's formula to one tick of the send step.
// The lines are as short as they can be, the hardest case for the budget.
// The formula settles after the fourth line of a burst, so forty lines (about
// seventy seconds) cover every wait it gives; a longer run repeats the last.
#include "chat/SendQueue.h"
#include "chat/TimedEvents.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

class FloodEndToEnd : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        TimedEvents::instance().start();
    }
    void TearDown() override { TimedEvents::instance().stop(); }
};

// Arrival times at the server of the client's chat lines (0x0E), in ms.
std::vector<qint64> chatArrivals(const QString& traceFile) {
    QFile file(traceFile);
    file.open(QIODevice::ReadOnly);
    std::vector<qint64> times;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QList<QByteArray> f = line.split(' ');
        if (f.size() >= 6 && f[2] == "bncs" && f[4] == "in" && f[5] == "0x0e")
            times.push_back(f[1].toLongLong());
    }
    return times;
}

} // namespace

TEST_F(FloodEndToEnd, FortyLinesLeaveAtTheQueuesPaceWithoutADisconnect) {
    QTemporaryDir traceDir;
    const QString trace = traceDir.filePath(QStringLiteral("trace.log"));
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start({QStringLiteral("--trace-file"), trace}));
    SettingsWrapper::instance().setLocalHashing(false);
    const int i = sandbox.loadProfile(QStringLiteral("flooder"), QStringLiteral("Flood"));
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return Bots(i).Channel() == QLatin1String("Flood"); }));

    constexpr int kLines = 40;
    constexpr int kLength = 2;
    for (int n = 0; n < kLines; ++n)
        Bots(i).Queue << QString::number(n, 36).rightJustified(kLength, u'0');
    const bool drained = waitFor([&] { return Bots(i).Queue.isEmpty(); }, 3 * 60 * 1000);
    waitFor([] { return false; }, 500);
    ASSERT_TRUE(drained) << Bots(i).Queue.size() << " lines left";
    EXPECT_TRUE(Bots(i).Online());
    EXPECT_FALSE(rtbChat(i).text().contains(QStringLiteral("Disconnected")));

    const std::vector<qint64> times = chatArrivals(trace);
    ASSERT_EQ(times.size(), size_t(kLines));
    // A line leaves on the first send step after the wait of the one before
    // has passed; with the queue never idle the burst passes 4 at the fourth
    // line. Steps come every 100 ms, so each gap lies within one step of the
    // wait rounded up to the step.
    constexpr qint64 kStep = 100;
    qint64 worst = 0;
    double total = 0;
    for (size_t n = 1; n < times.size(); ++n) {
        const qint64 wait = sendqueue::WaitAfter(kLength, int(n));
        const qint64 paced = (wait / kStep + 1) * kStep;
        const qint64 gap = times[n] - times[n - 1];
        EXPECT_LE(std::abs(gap - paced), kStep)
            << "line " << n << ": " << gap << " ms after a wait of " << wait;
        worst = std::max(worst, std::abs(gap - wait));
        total += double(gap - wait);
    }
    RecordProperty("largest_deviation_ms", int(worst));
    RecordProperty("mean_deviation_ms",
                   QString::number(total / (kLines - 1), 'f', 1).toStdString());
}
