// A slot keeps its connection and comes back by itself when it loses it, on
// the bot's own clock driven by hand: after a stream broken in the middle of a
// frame or by a frame too short to be one, after a server that never answers,
// and after the server drops it. The user's disconnect stops it. A server that
// echoes keep-alives hears one per period, not an endless exchange.
#include "chat/TimedEvents.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/TickCount.h"

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

namespace {

// A gateway in front of the sandbox: its first connection answers the bot's
// first bytes with a fault, the later ones are piped to the sandbox.
class FaultyGateway : public QTcpServer {
public:
    FaultyGateway(int sandboxPort, const QByteArray& fault, bool close) {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [=, this] {
            QTcpSocket* bot = nextPendingConnection();
            if (connections++ == 0) {
                connect(bot, &QTcpSocket::readyRead, bot, [=] {
                    bot->readAll();
                    bot->write(fault);
                    if (close) bot->disconnectFromHost();
                });
                return;
            }
            auto* server = new QTcpSocket(bot);
            server->connectToHost(QHostAddress::LocalHost, quint16(sandboxPort));
            connect(bot, &QTcpSocket::readyRead, [=] { server->write(bot->readAll()); });
            connect(server, &QTcpSocket::readyRead, [=] { bot->write(server->readAll()); });
        });
    }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }
    int connections = 0;
};

class ReconnectEndToEnd : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        SettingsWrapper::instance().setLocalHashing(false);
        TimedEvents::instance().start();
    }
    void TearDown() override { TimedEvents::instance().stop(); }

    QString chat(int i) const { return rtbChat(i).text(); }
    int attempts(int i) const { return chat(i).count(QStringLiteral("Connecting to BNLS host")); }
    // Moves the bot's clock on and lets the timers see it.
    void pass(quint32 ms) {
        clock.advance(ms);
        waitFor([] { return false; }, 200);
    }

    SandboxProcess sandbox;
    tickcount::ManualClock clock{GetTickCount()};
};

} // namespace

TEST_F(ReconnectEndToEnd, ABrokenOrSilentServerEndsInALineAndALogonOnTheNextTry) {
    ASSERT_TRUE(sandbox.start());
    struct Case {
        QByteArray fault;
        bool close;
        const char* line;
        quint32 wait; // until the next try
    } const cases[] = {
        // Five bytes of an eight-byte frame: the next connection must not
        // find them in front of its first frame.
        {QByteArray("\xff\x25\x08\x00\x01", 5), true, "[BNET] Disconnected!", 20000},
        {QByteArray("\xff\x25\x02\x00\xff\x25\x08\x00\0\0\0\0", 12), false,
         "[BNET] Protocol error: the server sent a frame of length 2, below the least of 4; "
         "closing the connection.",
         20000},
        {{}, false, "[BNET] The server did not answer within 30 seconds; connecting again.", 31000},
    };
    for (const Case& c : cases) {
        FaultyGateway gateway(sandbox.bncsPort, c.fault, c.close);
        const int i = sandbox.loadProfile(QStringLiteral("faulty%1").arg(&c - cases), {});
        Bots(i).Config.setServer(gateway.address());
        SlotTable::instance().ConnectBot(i);
        ASSERT_TRUE(waitFor([&] { return gateway.connections == 1; })) << c.line;
        waitFor([] { return false; }, 300);
        pass(c.wait);
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(c.line))) << chat(i).toStdString();
        EXPECT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
        EXPECT_EQ(gateway.connections, 2) << c.line;
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

TEST_F(ReconnectEndToEnd, ADroppedSlotComesBackByItselfUntilTheUserDisconnects) {
    ASSERT_TRUE(sandbox.start({QStringLiteral("--control")}));
    const int i = sandbox.loadProfile(QStringLiteral("returner"), QStringLiteral("Lobby"));
    SlotTable::instance().SelectBot(i);
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();

    // Each drop soon after the last waits longer; the status line counts down.
    for (const quint32 wait : {15000u, 30000u}) {
        ASSERT_EQ(sandbox.control(QStringLiteral("disconnect returner")), QStringLiteral("ok"));
        ASSERT_TRUE(waitFor([&] { return Bots(i).Reconnect.isArmed(); }));
        pass(wait - 1000);
        EXPECT_TRUE(TimedEvents::instance().StatusLine().startsWith(
            QStringLiteral("Disconnected! Reconnecting in ")));
        const int before = attempts(i);
        pass(wait / 5 + 2000);
        EXPECT_EQ(attempts(i), before + 1) << "at a wait of " << wait;
        ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
    }

    // The user's disconnect, as the menu does it, stops the coming try.
    ASSERT_EQ(sandbox.control(QStringLiteral("disconnect returner")), QStringLiteral("ok"));
    ASSERT_TRUE(waitFor([&] { return Bots(i).Reconnect.isArmed(); }));
    Bots(i).CanConnect = false;
    Bots(i).setOnline(false);
    Bots(i).Connection.KillSocket(i);
    const int before = attempts(i);
    pass(700000);
    EXPECT_EQ(attempts(i), before);
    EXPECT_EQ(TimedEvents::instance().StatusLine(), QStringLiteral("Disconnected!"));
}

TEST_F(ReconnectEndToEnd, AServerThatEchoesKeepAlivesHearsOnePerPeriod) {
    QTemporaryDir dir;
    const QString trace = dir.filePath(QStringLiteral("trace.log"));
    ASSERT_TRUE(sandbox.start({QStringLiteral("--echo-keepalive"), QStringLiteral("--trace-file"),
                               trace}));
    const int i = sandbox.loadProfile(QStringLiteral("keeper"), QStringLiteral("Lobby"));
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
    const auto keepAlives = [&] {
        QFile file(trace);
        if (!file.open(QIODevice::ReadOnly)) return -1;
        int count = 0;
        for (const QByteArray& line : file.readAll().split('\n'))
            count += line.contains(" bncs ") && line.contains(" in 0x00 ") ? 1 : 0;
        return count;
    };
    for (int period = 1; period <= 3; ++period) {
        pass(40000);
        waitFor([&] { return keepAlives() >= period; }, 2000);
        pass(1000);
        EXPECT_EQ(keepAlives(), period);
    }
    EXPECT_TRUE(Bots(i).Online());
}
