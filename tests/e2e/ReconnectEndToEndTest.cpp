// A slot keeps its connection and comes back by itself when it loses it, on
// the bot's own clock driven by hand: after a stream broken in the middle of a
// frame or by a frame too short to be one, after a server that never answers,
// and after the server drops it. The user's disconnect stops it. A server that
// echoes keep-alives hears one per period, not an endless exchange.
#include "e2e/BotFixture.h"
#include "platform/TickCount.h"

#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <algorithm>
#include <map>
#include <vector>

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

// A server that takes connections and never says a word.
class SilentServer : public QTcpServer {
public:
    SilentServer() {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* peer = nextPendingConnection()) {
                ++connections;
                connect(peer, &QTcpSocket::readyRead, peer, [peer] { peer->readAll(); });
            }
        });
    }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }
    int connections = 0;
};

class ReconnectEndToEnd : public BotFixture {
protected:
    int attempts(int i) const { return chat(i).count(QStringLiteral("Connecting to BNLS host")); }
    // Moves the bot's clock on, runs the timers that are due and lets the
    // sockets deliver what that sent.
    void pass(quint32 ms) {
        clock.advance(ms);
        TimedEvents::instance().pulse();
        pause(20);
    }

    tickcount::ManualClock clock{GetTickCount()};
};

} // namespace

TEST_F(ReconnectEndToEnd, ABrokenServerEndsInALineAndALogonOnTheNextTry) {
    ASSERT_TRUE(sandbox.start());
    struct Case {
        QByteArray fault;
        bool close;
        const char* line;
    } const cases[] = {
        // Five bytes of an eight-byte frame: the next connection must not
        // find them in front of its first frame.
        {QByteArray("\xff\x25\x08\x00\x01", 5), true, "[BNET] Disconnected!"},
        {QByteArray("\xff\x25\x02\x00\xff\x25\x08\x00\0\0\0\0", 12), false,
         "[BNET] Protocol error: the server sent a frame of length 2, below the least of 4; "
         "closing the connection."},
    };
    for (const Case& c : cases) {
        FaultyGateway gateway(sandbox.bncsPort, c.fault, c.close);
        const int i = sandbox.loadProfile(QStringLiteral("faulty%1").arg(&c - cases), {});
        Bots(i).Config.setServer(gateway.address());
        SlotTable::instance().ConnectBot(i);
        ASSERT_TRUE(waitFor([&] { return gateway.connections == 1; })) << c.line;
        pause(300);
        pass(20000); // past the first wait before the next try
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(c.line))) << chat(i).toStdString();
        EXPECT_TRUE(waitFor([&] { return Bots(i).Online(); })) << chat(i).toStdString();
        EXPECT_EQ(gateway.connections, 2) << c.line;
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

TEST_F(ReconnectEndToEnd, ADroppedSlotComesBackByItselfUntilTheUserDisconnects) {
    ASSERT_TRUE(sandbox.start({QStringLiteral("--control")}));
    const int i = inChannel(QStringLiteral("returner"), {});
    SlotTable::instance().SelectBot(i);

    // Each drop soon after the last waits longer; the status line counts down.
    for (const quint32 wait : {15000u, 30000u}) {
        control({"disconnect returner"});
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
    control({"disconnect returner"});
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
    ASSERT_TRUE(sandbox.start(traced({QStringLiteral("--echo-keepalive")})));
    const int i = inChannel(QStringLiteral("keeper"), {});
    const auto keepAlives = [&] {
        const std::vector<TracedFrame> frames = readTrace(tracePath());
        return std::count_if(frames.begin(), frames.end(), [](const TracedFrame& t) {
            return t.link == "bncs" && t.direction == "in" && t.id == "0x00";
        });
    };
    for (int period = 1; period <= 3; ++period) {
        pass(40000);
        waitFor([&] { return keepAlives() >= period; }, 2000);
        pass(1000);
        EXPECT_EQ(keepAlives(), period);
    }
    EXPECT_TRUE(Bots(i).Online());
}

// A server that keeps silent is named, Battle.net or BNLS, and tried again
// after the same growing wait as a server that went away.
TEST_F(ReconnectEndToEnd, ASilentServerIsNamedAndWaitedForLongerEachTime) {
    ASSERT_TRUE(sandbox.start());
    SilentServer silent;
    const struct {
        bool bnls;
        const char* line;
    } cases[] = {
        {false, "[BNET] The Battle.net server did not answer within 30 seconds."},
        {true, "[BNLS] The BNLS server did not answer within 30 seconds."},
    };
    for (const auto& c : cases) {
        silent.connections = 0;
        const int i = sandbox.loadProfile(QStringLiteral("hush%1").arg(c.bnls), {});
        if (c.bnls)
            Bots(i).Config.setServerBNLS(silent.address());
        else
            Bots(i).Config.setServer(silent.address());
        SlotTable::instance().ConnectBot(i);
        for (const quint32 wait : {15000u, 30000u}) {
            ASSERT_TRUE(waitFor([&] { return silent.connections == int(wait / 15000); }));
            pause(300);
            pass(31000);
            EXPECT_EQ(chat(i).count(QString::fromLatin1(c.line)), int(wait / 15000)) << c.line;
            ASSERT_TRUE(Bots(i).Reconnect.isArmed()) << chat(i).toStdString();
            const quint32 left = Bots(i).Reconnect.remaining(clock.now());
            EXPECT_GE(left, wait) << c.line;
            EXPECT_LE(left, wait + wait / 5) << c.line;
            pass(left + 100);
        }
        EXPECT_FALSE(chat(i).contains(QLatin1String(c.bnls ? "[BNET] The" : "[BNLS] The")));
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

// Profiles dropped together are spaced 3 seconds apart as they come back,
// and each comes back at the moment its line announced.
TEST_F(ReconnectEndToEnd, ProfilesDroppedTogetherComeBackWhenTheirLinesSay) {
    ASSERT_TRUE(sandbox.start({QStringLiteral("--control")}));
    const int kProfiles = 4;
    std::vector<int> slots;
    QStringList drops;
    for (int k = 0; k < kProfiles; ++k) {
        slots.push_back(sandbox.loadProfile(QStringLiteral("together%1").arg(k), {}));
        SlotTable::instance().ConnectBot(slots.back());
        drops << QStringLiteral("disconnect together%1").arg(k);
    }
    ASSERT_TRUE(waitFor([&] {
        return std::all_of(slots.begin(), slots.end(), [](int i) { return Bots(i).Online(); });
    }));
    ASSERT_EQ(sandbox.control(drops).size(), kProfiles);
    ASSERT_TRUE(waitFor([&] {
        return std::all_of(slots.begin(), slots.end(),
                           [](int i) { return Bots(i).Reconnect.isArmed(); });
    }));
    const QRegularExpression said(QStringLiteral("Reconnecting in (\\d+) seconds"));
    std::map<int, int> announced, started, before;
    for (const int i : slots) {
        announced[i] = said.match(chat(i)).captured(1).toInt();
        before[i] = attempts(i);
    }
    for (int second = 1; second <= 40; ++second) {
        pass(1000);
        for (const int i : slots)
            if (!started.count(i) && attempts(i) > before[i]) started[i] = second;
    }
    for (const int i : slots)
        EXPECT_EQ(started[i], announced[i]) << chat(i).toStdString();
}
