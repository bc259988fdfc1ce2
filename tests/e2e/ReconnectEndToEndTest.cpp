// A slot that loses its connection comes back by itself, on the bot's own
// clock driven by hand: after the server drops it, after a stream broken in
// the middle of a frame or by a frame too short to be one, and after a server
// that takes the connection and never answers. The user's disconnect stops it.
#include "chat/TimedEvents.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/TickCount.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>

namespace {

// A Battle.net gateway in front of the sandbox: its first connections get a
// fault of the test's choosing, the later ones are piped to the sandbox.
class FaultyGateway : public QObject {
public:
    using Fault = std::function<void(QTcpSocket& bot)>;

    FaultyGateway(int sandboxPort, QList<Fault> faults)
        : m_sandboxPort(sandboxPort), m_faults(std::move(faults)) {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* bot = m_server.nextPendingConnection()) accept(bot);
        });
    }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_server.serverPort()); }
    int connections = 0;

private:
    void accept(QTcpSocket* bot) {
        bot->setParent(this);
        if (connections++ < m_faults.size()) {
            Fault fault = m_faults[connections - 1];
            // The fault answers the bot's first bytes, as a server would.
            connect(bot, &QTcpSocket::readyRead, this, [bot, fault, done = false]() mutable {
                bot->readAll();
                if (!std::exchange(done, true)) fault(*bot);
            });
            return;
        }
        auto* server = new QTcpSocket(this);
        server->connectToHost(QHostAddress::LocalHost, quint16(m_sandboxPort));
        connect(bot, &QTcpSocket::readyRead, server, [bot, server] { server->write(bot->readAll()); });
        connect(server, &QTcpSocket::readyRead, bot, [bot, server] { bot->write(server->readAll()); });
        connect(server, &QTcpSocket::disconnected, bot, &QTcpSocket::disconnectFromHost);
    }

    QTcpServer m_server;
    int m_sandboxPort;
    QList<Fault> m_faults;
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
    void pass(tickcount::ManualClock& clock, quint32 ms) {
        clock.advance(ms);
        waitFor([] { return false; }, 200);
    }

    SandboxProcess sandbox;
};

} // namespace

TEST_F(ReconnectEndToEnd, ABrokenOrSilentServerEndsInALineAndALogonOnTheNextTry) {
    ASSERT_TRUE(sandbox.start());
    struct Case {
        const char* name;
        FaultyGateway::Fault fault;
        const char* line;
        quint32 wait; // past the try that follows
    };
    const Case cases[] = {
        // Five bytes of an eight-byte frame, then the close: the next
        // connection must not find them in front of its first frame.
        {"closed mid-frame",
         [](QTcpSocket& bot) {
             bot.write(QByteArray("\xff\x25\x08\x00\x01", 5));
             bot.disconnectFromHost();
         },
         "[BNET] Disconnected!", 20000},
        {"frame of length 2",
         [](QTcpSocket& bot) { bot.write(QByteArray("\xff\x25\x02\x00\xff\x25\x08\x00\0\0\0\0", 12)); },
         "[BNET] Protocol error: the server sent a frame of length 2, below the least of 4; "
         "closing the connection.",
         20000},
        {"silent", [](QTcpSocket&) {},
         "[BNET] The server did not answer within 30 seconds; connecting again.", 0},
    };
    tickcount::ManualClock clock(GetTickCount());
    for (const Case& c : cases) {
        FaultyGateway gateway(sandbox.bncsPort, {c.fault});
        const int i = sandbox.loadProfile(QStringLiteral("faulty%1").arg(&c - cases), {});
        Bots(i).Config.setServer(gateway.address());
        SlotTable::instance().ConnectBot(i);
        ASSERT_TRUE(waitFor([&] { return gateway.connections == 1; })) << c.name;
        if (c.wait == 0) {
            waitFor([] { return false; }, 300);
            pass(clock, 31000);
        } else {
            ASSERT_TRUE(waitFor([&] { return chat(i).contains("[BNET] Reconnecting in "); }))
                << c.name << "\n"
                << chat(i).toStdString();
            pass(clock, c.wait);
        }
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(c.line))) << c.name;
        EXPECT_TRUE(waitFor([&] { return Bots(i).Online(); }))
            << c.name << "\n"
            << chat(i).toStdString();
        EXPECT_EQ(gateway.connections, 2) << c.name;
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

TEST_F(ReconnectEndToEnd, ADroppedSlotComesBackByItselfUntilTheUserDisconnects) {
    ASSERT_TRUE(sandbox.start({QStringLiteral("--control")}));
    const int i = sandbox.loadProfile(QStringLiteral("returner"), QStringLiteral("Lobby"));
    SlotTable::instance().SelectBot(i);
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
    tickcount::ManualClock clock(GetTickCount());

    // Each drop waits longer, and the status line counts the wait down.
    for (const quint32 wait : {15000u, 30000u}) {
        ASSERT_EQ(sandbox.control(QStringLiteral("disconnect returner")), QStringLiteral("ok"));
        ASSERT_TRUE(waitFor([&] { return !Bots(i).Online() && Bots(i).Reconnect.isArmed(); }));
        pass(clock, 1000);
        EXPECT_TRUE(TimedEvents::instance().StatusLine().startsWith(
            QStringLiteral("Disconnected! Reconnecting in ")))
            << TimedEvents::instance().StatusLine().toStdString();
        const int before = attempts(i);
        pass(clock, wait - 2000);
        EXPECT_EQ(attempts(i), before) << "too early, at a wait of " << wait;
        pass(clock, wait / 5 + 2000);
        EXPECT_EQ(attempts(i), before + 1);
        // In chat for a moment only: the next drop waits longer.
        ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
    }

    // The user's disconnect, as the menu does it, stops the coming try.
    ASSERT_EQ(sandbox.control(QStringLiteral("disconnect returner")), QStringLiteral("ok"));
    ASSERT_TRUE(waitFor([&] { return Bots(i).Reconnect.isArmed(); }));
    Bots(i).CanConnect = false;
    Bots(i).setOnline(false);
    Bots(i).Connection.KillSocket(i);
    const int before = attempts(i);
    pass(clock, 700000);
    EXPECT_EQ(attempts(i), before);
    EXPECT_EQ(TimedEvents::instance().StatusLine(), QStringLiteral("Disconnected!"));
}
