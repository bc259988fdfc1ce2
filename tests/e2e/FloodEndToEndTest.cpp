// Forty lines through the send queue while the sandbox enforces its
// flood budget: the bot is never disconnected, and the gaps between lines
// as the server saw them follow the queue's formula.
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
    const int i = SlotTable::instance().LoadProfile(QStringLiteral("flooder"));
    ConfigWrapper& c = Bots(i).Config;
    c.setAccount(QStringLiteral("flooder"));
    c.setPassword(QStringLiteral("secret"));
    c.setClient(QStringLiteral("STAR"));
    c.setVerbyte(QStringLiteral("d3"));
    c.setCdkey(QStringLiteral("7178075237576"));
    c.setServer(sandbox.bncsServer());
    c.setServerBNLS(sandbox.bnlsServer());
    c.setChannel(QStringLiteral("Flood"));
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return Bots(i).Channel() == QLatin1String("Flood"); }));

    // Short lines are the hardest case for the budget: they leave fastest.
    constexpr int kLines = 40;
    for (int n = 0; n < kLines; ++n)
        Bots(i).Queue << QStringLiteral("line %1").arg(n, 3, 10, QLatin1Char('0'));
    const bool drained = waitFor([&] { return Bots(i).Queue.isEmpty(); }, 3 * 60 * 1000);
    waitFor([] { return false; }, 500);
    ASSERT_TRUE(drained) << Bots(i).Queue.size() << " lines left";
    EXPECT_TRUE(Bots(i).Online());
    EXPECT_FALSE(rtbChat(i).text().contains(QStringLiteral("Disconnected")));

    const std::vector<qint64> times = chatArrivals(trace);
    ASSERT_EQ(times.size(), size_t(kLines));
    // Each gap is the wait of the line before, to the timer's grain; with
    // the queue never idle the burst passes 4 after the fourth line.
    for (size_t n = 1; n < times.size(); ++n) {
        const int wait = sendqueue::WaitAfter(8, n < 4 ? int(n) : 4);
        EXPECT_GE(times[n] - times[n - 1], wait - 100) << n;
        EXPECT_LE(times[n] - times[n - 1], wait + 200) << n;
    }
}
