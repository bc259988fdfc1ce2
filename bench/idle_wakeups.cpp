// An idle bot sleeps: the headless program with 1, then 100 profiles online
// in a quiet channel of the sandbox (nobody else there, nothing said), and
// the times its threads were switched in over a window of quiet, a second.
// The window is 60 seconds; CORVANTIDE_IDLE_SECONDS sets another.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <benchmark/benchmark.h>
#include <unistd.h>

namespace {

const QString kBot = QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide");
const QString kSandbox = QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide-sandbox");
const QString kChannel = QStringLiteral("Quiet");

// Context switches and CPU ticks of every thread of a process so far.
struct ProcessCount {
    long long switches = 0;
    long long cpuTicks = 0;
};

ProcessCount countOf(qint64 pid) {
    ProcessCount count;
    const QString tasks = QStringLiteral("/proc/%1/task").arg(pid);
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks + u'/' + task + QStringLiteral("/status"));
        if (!status.open(QIODevice::ReadOnly)) continue;
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:") ||
                line.startsWith("nonvoluntary_ctxt_switches:"))
                count.switches += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (stat.open(QIODevice::ReadOnly)) {
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 12) count.cpuTicks = fields[11].toLongLong() + fields[12].toLongLong();
    }
    return count;
}

QString controlAnswer(QProcess& sandbox, const QByteArray& line) {
    sandbox.write(line + '\n');
    while (!sandbox.canReadLine())
        if (!sandbox.waitForReadyRead(5000)) return {};
    return QString::fromUtf8(sandbox.readLine()).trimmed();
}

bool startSandbox(QProcess& sandbox, int& bncs, int& bnls) {
    sandbox.start(kSandbox, {QStringLiteral("--bncs-port"), QStringLiteral("0"),
                             QStringLiteral("--bnls-port"), QStringLiteral("0"),
                             QStringLiteral("--control")});
    if (!sandbox.waitForStarted()) return false;
    while (bncs == 0 || bnls == 0) {
        if (!sandbox.canReadLine() && !sandbox.waitForReadyRead(5000)) return false;
        const QString line = QString::fromUtf8(sandbox.readLine()).trimmed();
        const int port = line.section(u':', -1).toInt();
        if (line.startsWith(QLatin1String("BNCS listening"))) bncs = port;
        if (line.startsWith(QLatin1String("BNLS listening"))) bnls = port;
    }
    return true;
}

// Profiles that load at start and log on to the sandbox as StarCraft.
bool writeProfiles(const QString& home, int count, int bncs, int bnls) {
    QByteArray reg = "REGEDIT4\r\n\r\n";
    for (int i = 0; i < count; ++i) {
        reg += QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\idle%1]\r\n"
                              "\"Account\"=\"idle%1\"\r\n\"Password\"=\"secret\"\r\n"
                              "\"Product\"=\"STAR\"\r\n\"Verbyte\"=\"d3\"\r\n"
                              "\"Cdkey1\"=\"7178075237576\"\r\n\"Channel\"=\"%2\"\r\n"
                              "\"Server\"=\"127.0.0.1:%3\"\r\n\"ServerBNLS\"=\"127.0.0.1:%4\"\r\n"
                              "\"Load at Startup\"=dword:00000001\r\n\r\n")
                   .arg(i)
                   .arg(kChannel)
                   .arg(bncs)
                   .arg(bnls)
                   .toLatin1();
    }
    const QString file = home + QStringLiteral("/idle.reg");
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(reg) != reg.size()) return false;
    out.close();
    QProcess import;
    import.start(kBot, {QStringLiteral("--home"), home, QStringLiteral("--import-reg"), file});
    return import.waitForFinished(60000) && import.exitCode() == 0;
}

void IdleBotWakeUps(benchmark::State& state) {
    const int profiles = int(state.range(0));
    const int seconds = qEnvironmentVariableIsSet("CORVANTIDE_IDLE_SECONDS")
                            ? qEnvironmentVariableIntValue("CORVANTIDE_IDLE_SECONDS")
                            : 60;
    for (auto _ : state) {
        QTemporaryDir home;
        QProcess sandbox;
        int bncs = 0;
        int bnls = 0;
        if (!startSandbox(sandbox, bncs, bnls) || !writeProfiles(home.path(), profiles, bncs, bnls)) {
            state.SkipWithError("the sandbox or the profiles could not be set up");
            return;
        }
        QProcess bot;
        bot.setStandardOutputFile(QProcess::nullDevice());
        bot.setStandardErrorFile(QProcess::nullDevice());
        bot.start(kBot, {QStringLiteral("--headless"), QStringLiteral("--no-input"),
                         QStringLiteral("--connect"), QStringLiteral("--home"), home.path()});
        const QString everyone = QStringLiteral("members %1 ").arg(profiles);
        bool online = false;
        for (int i = 0; i < 240 && !online; ++i) {
            QThread::msleep(500);
            online = controlAnswer(sandbox, "members " + kChannel.toLatin1()).startsWith(everyone);
        }
        if (!online) {
            state.SkipWithError("not every profile reached the channel");
            return;
        }
        // The joins of the others settle, then nothing happens.
        QThread::sleep(5);
        const ProcessCount before = countOf(bot.processId());
        QThread::sleep(seconds);
        const ProcessCount after = countOf(bot.processId());
        state.SetIterationTime(seconds);
        state.counters["wakeups_per_s"] = double(after.switches - before.switches) / seconds;
        state.counters["cpu_percent"] =
            100.0 * double(after.cpuTicks - before.cpuTicks) / double(sysconf(_SC_CLK_TCK)) / seconds;
        bot.terminate();
        bot.waitForFinished(20000);
        sandbox.closeWriteChannel();
        sandbox.waitForFinished(5000);
    }
}

} // namespace

BENCHMARK(IdleBotWakeUps)
    ->ArgName("profiles")
    ->Arg(1)
    ->Arg(100)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
