// The sandbox under load: 200 clients log on at once and sit in the residents' channel while
// the residents talk. Reports the chat events the sandbox delivers a second and the CPU it
// spends doing so (100 % is one core), so that benchmarks of the bot know their ceiling. The
// sandbox runs as its own process; its CPU time is read from /proc.
#include "logon/PasswordHash.h"
#include "logon/ProductKey.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>
#include <benchmark/benchmark.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kClients = 200;
constexpr int kMeasureMs = 5000;
const char* kKey = "7178075237576";

QByteArray frame(quint8 id, const PacketWriter& w) {
    return PacketWriter::frameBNCS(id, w.payload());
}

// One client that logs on by the old system, enters chat, joins the channel and then only
// counts the chat events it receives.
class LoadClient {
public:
    LoadClient(quint16 port, int number) : m_account(QStringLiteral("load%1").arg(number)) {
        QObject::connect(&m_socket, &QTcpSocket::connected, [this] { identify(); });
        QObject::connect(&m_socket, &QTcpSocket::readyRead, [this] { read(); });
        m_socket.connectToHost(QHostAddress::LocalHost, port);
    }
    bool inChannel() const { return m_inChannel; }
    quint64 events() const { return m_events; }

private:
    void identify() {
        PacketWriter w;
        w.WriteDWORD(0);
        w.WriteDWORD(0x49583836);
        w.WriteVOID("RATS");
        for (int i = 0; i < 6; ++i)
            w.WriteDWORD(0);
        w.WriteSTRING(QStringLiteral("USA"));
        w.WriteSTRING(QStringLiteral("United States"));
        m_socket.write(QByteArray(1, '\x01') + frame(0x50, w));
    }

    void read() {
        m_in += m_socket.readAll();
        while (m_in.size() >= 4) {
            const int length = quint8(m_in[2]) | quint8(m_in[3]) << 8;
            if (m_in.size() < length) return;
            PacketReader r;
            r.HandleBuffer(m_in.left(length));
            r.Skip(4);
            handle(quint8(m_in[1]), r);
            m_in.remove(0, length);
        }
    }

    void handle(quint8 id, PacketReader& r) {
        switch (id) {
        case 0x0F:
            ++m_events;
            if (r.ReadDWORD() == 7) m_inChannel = true;
            break;
        case 0x50: {
            r.ReadDWORD();
            m_serverToken = r.ReadDWORD();
            const auto key = logon::ProductKey::decode(kKey);
            const auto hash = key->hash(kClientToken, m_serverToken);
            PacketWriter w;
            for (quint32 v : {kClientToken, 0u, 0u, 1u, 0u, 13u, key->product(), key->val1(), 0u})
                w.WriteDWORD(v);
            w.WriteVOID(QByteArray(reinterpret_cast<const char*>(hash.data()), 20));
            w.WriteSTRING(QString());
            w.WriteSTRING(QStringLiteral("load"));
            m_socket.write(frame(0x51, w));
            logOn();
            break;
        }
        case 0x3A:
            if (r.ReadDWORD() == 1) {
                const auto hash = logon::passwordHash("pw");
                PacketWriter w;
                w.WriteVOID(QByteArray(reinterpret_cast<const char*>(hash.data()), 20));
                w.WriteSTRING(m_account);
                m_socket.write(frame(0x3D, w));
                logOn();
            } else {
                PacketWriter enter, join;
                enter.WriteSTRING(m_account);
                enter.WriteBYTE(0);
                join.WriteDWORD(2);
                join.WriteSTRING(QStringLiteral("Sandbox"));
                m_socket.write(frame(0x0A, enter) + frame(0x0C, join));
            }
            break;
        }
    }

    void logOn() {
        const auto proof = logon::doublePasswordHash("pw", kClientToken, m_serverToken);
        PacketWriter w;
        w.WriteDWORD(kClientToken);
        w.WriteDWORD(m_serverToken);
        w.WriteVOID(QByteArray(reinterpret_cast<const char*>(proof.data()), 20));
        w.WriteSTRING(m_account);
        m_socket.write(frame(0x3A, w));
    }

    static constexpr quint32 kClientToken = 0x600DF00D;
    QString m_account;
    QTcpSocket m_socket;
    QByteArray m_in;
    quint32 m_serverToken = 0;
    bool m_inChannel = false;
    quint64 m_events = 0;
};

// CPU seconds a process has spent, user and system.
double cpuSeconds(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly)) return 0;
    const QByteArray line = stat.readAll();
    // Fields after the command's closing bracket; utime and stime are the 12th and 13th.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return double(fields.value(11).toLongLong() + fields.value(12).toLongLong()) /
           double(sysconf(_SC_CLK_TCK));
}

void SandboxLoad(benchmark::State& state) {
    const int residents = int(state.range(0));
    const int rate = int(state.range(1));
    QProcess sandbox;
    sandbox.start(QCoreApplication::applicationDirPath() + "/../corvantide-sandbox",
                  {"--bncs-port", "0", "--bnls-port", "0", "--version-result", "0", "--flood",
                   "off", "--residents", QString::number(residents), "--resident-rate",
                   QString::number(rate), "--seed", "1"});
    quint16 port = 0;
    const QRegularExpression announced("^BNCS listening on 127\\.0\\.0\\.1:(\\d+)");
    if (!QTest::qWaitFor(
            [&] {
                while (sandbox.canReadLine())
                    if (const auto m = announced.match(QString::fromLatin1(sandbox.readLine()));
                        m.hasMatch())
                        port = m.captured(1).toUShort();
                return port != 0;
            },
            10000)) {
        state.SkipWithError("the sandbox did not start");
        return;
    }

    for (auto _ : state) {
        QElapsedTimer logon;
        logon.start();
        std::vector<std::unique_ptr<LoadClient>> clients;
        for (int i = 0; i < kClients; ++i)
            clients.push_back(std::make_unique<LoadClient>(port, i));
        const bool allIn = QTest::qWaitFor(
            [&] {
                return std::all_of(clients.begin(), clients.end(),
                                   [](const auto& c) { return c->inChannel(); });
            },
            60000);
        if (!allIn) {
            state.SkipWithError("not every client reached the channel");
            break;
        }
        const double logonMs = double(logon.elapsed());

        const auto delivered = [&] {
            quint64 sum = 0;
            for (const auto& c : clients)
                sum += c->events();
            return sum;
        };
        const quint64 eventsBefore = delivered();
        const double cpuBefore = cpuSeconds(sandbox.processId());
        QElapsedTimer window;
        window.start();
        QTest::qWait(kMeasureMs);
        const double seconds = double(window.elapsed()) / 1000.0;
        const double cpu = cpuSeconds(sandbox.processId()) - cpuBefore;
        state.SetIterationTime(seconds);
        state.counters["logon_ms"] = logonMs;
        state.counters["events_per_s"] = double(delivered() - eventsBefore) / seconds;
        state.counters["sandbox_cpu_pct"] = 100.0 * cpu / seconds;
        state.counters["events_per_cpu_s"] =
            cpu > 0 ? double(delivered() - eventsBefore) / cpu : 0.0;
    }
    sandbox.kill();
    sandbox.waitForFinished();
}

} // namespace

BENCHMARK(SandboxLoad)
    ->ArgNames({"residents", "actions_per_s"})
    ->Args({50, 10})
    ->Args({50, 100})
    ->Args({50, 1000})
    ->Args({50, 4000})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
