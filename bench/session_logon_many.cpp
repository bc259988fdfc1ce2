// A hundred, then a thousand profiles in one process log on to the local
// sandbox at once: the time until all are in chat, and the CPU the bot spent
// against the CPU the sandbox spent in the same run.
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

// What this process has spent so far.
struct OwnUsage {
    double cpuSeconds = 0;
    long pageFaults = 0;
};

OwnUsage ownUsage() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return {double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6,
            usage.ru_minflt + usage.ru_majflt};
}

double processCpuSeconds(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly)) return 0;
    const QList<QByteArray> fields = stat.readAll().split(' ');
    if (fields.size() < 15) return 0;
    return double(fields[13].toLongLong() + fields[14].toLongLong()) / double(sysconf(_SC_CLK_TCK));
}

// Reads "BNCS listening on 127.0.0.1:N" and the BNLS line from the sandbox.
bool readPorts(QProcess& sandbox, int& bncs, int& bnls) {
    while (bncs == 0 || bnls == 0) {
        if (!sandbox.waitForReadyRead(5000)) return false;
        while (sandbox.canReadLine()) {
            const QString line = QString::fromUtf8(sandbox.readLine()).trimmed();
            const int port = line.section(u':', -1).toInt();
            if (line.startsWith(QLatin1String("BNCS listening")))
                bncs = port;
            else if (line.startsWith(QLatin1String("BNLS listening")))
                bnls = port;
        }
    }
    return true;
}

void LogOnManySlots(benchmark::State& state) {
    const int kSlots = int(state.range(0));
    const QString sandboxPath = QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide-sandbox");
    for (auto _ : state) {
        QTemporaryDir home;
        SetHomeFolder(home.path());
        SlotTable::reset();
        QProcess sandbox;
        sandbox.start(sandboxPath, {QStringLiteral("--bncs-port"), QStringLiteral("0"),
                                    QStringLiteral("--bnls-port"), QStringLiteral("0")});
        int bncs = 0;
        int bnls = 0;
        if (!sandbox.waitForStarted() || !readPorts(sandbox, bncs, bnls)) {
            state.SkipWithError("the sandbox did not start");
            return;
        }
        SlotTable& table = SlotTable::instance();
        for (int i = 0; i < kSlots; ++i) {
            const int slot = table.LoadProfile(QStringLiteral("bench%1").arg(i));
            ConfigWrapper& c = Bots(slot).Config;
            c.setAccount(QStringLiteral("bench%1").arg(i));
            c.setPassword(QStringLiteral("secret"));
            c.setClient(QStringLiteral("STAR"));
            c.setVerbyte(QStringLiteral("d3"));
            c.setCdkey(QStringLiteral("7178075237576"));
            c.setServer(QStringLiteral("127.0.0.1:%1").arg(bncs));
            c.setServerBNLS(QStringLiteral("127.0.0.1:%1").arg(bnls));
            c.setChannel(QStringLiteral("Bench"));
        }
        const OwnUsage botBefore = ownUsage();
        const double sandboxCpuBefore = processCpuSeconds(sandbox.processId());
        QElapsedTimer clock;
        clock.start();
        for (int i = 1; i <= kSlots; ++i)
            table.ConnectBot(i);
        // Sleeps between events, so the count of the bot's CPU is the bot's
        // work and not a spin of this loop; the timer wakes it to look.
        QTimer wake;
        wake.start(20);
        int online = 0;
        while (online < kSlots && clock.elapsed() < 60000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            online = 0;
            for (int i = 1; i <= kSlots; ++i)
                online += Bots(i).Online() ? 1 : 0;
        }
        const double seconds = double(clock.nsecsElapsed()) / 1e9;
        const OwnUsage botAfter = ownUsage();
        const double botCpu = botAfter.cpuSeconds - botBefore.cpuSeconds;
        const double sandboxCpu = processCpuSeconds(sandbox.processId()) - sandboxCpuBefore;
        state.SetIterationTime(seconds);
        state.counters["online"] = online;
        state.counters["bot_cpu_s"] = botCpu;
        state.counters["bot_page_faults"] = double(botAfter.pageFaults - botBefore.pageFaults);
        state.counters["sandbox_cpu_s"] = sandboxCpu;
        state.counters["bot_per_sandbox_cpu"] = sandboxCpu > 0 ? botCpu / sandboxCpu : 0;
        sandbox.kill();
        sandbox.waitForFinished();
        if (online < kSlots) state.SkipWithError("not every slot reached chat within a minute");
    }
}

} // namespace

BENCHMARK(LogOnManySlots)
    ->ArgName("slots")
    ->Arg(100)
    ->Arg(1000)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
