// A page never hurts the bot: an oversized message closes only its page, a
// seventeenth page is turned away, a page that stops reading costs a bounded
// queue and hears how much it missed, and a flood of connections leaves the
// page reachable.
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "control/WebToken.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"
#include "web/WebFront.h"
#include "web/WebListener.h"
#include "web/WebPage.h"

#include <QCoreApplication>
#include <QTcpSocket>
#include <QWebSocket>
#include <memory>

namespace {

// A page as a browser runs it: opens, says hello, keeps what it hears.
struct Page {
    QWebSocket socket;
    QStringList heard;

    explicit Page(int port, const QString& token) {
        QObject::connect(&socket, &QWebSocket::binaryMessageReceived,
                         [this](const QByteArray& m) { heard.append(QString::fromUtf8(m)); });
        QObject::connect(&socket, &QWebSocket::connected, [this, token] {
            socket.sendTextMessage(QStringLiteral("{\"event\":\"hello\",\"token\":\"%1\"}").arg(token));
        });
        socket.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/socket").arg(port)));
    }
    bool heardType(const char* type) const {
        return std::any_of(heard.begin(), heard.end(), [type](const QString& m) {
            return m.contains(QStringLiteral("\"event\":\"%1\"").arg(QLatin1String(type)));
        });
    }
};

// A page that stops reading after its hello: the raw handshake on a socket
// whose reading the test holds back.
class StalledPage {
public:
    StalledPage(int port, const QString& token) {
        m_socket.connectToHost(QHostAddress::LocalHost, quint16(port));
        m_socket.waitForConnected(5000);
        m_socket.write(QStringLiteral("GET /socket HTTP/1.1\r\nHost: 127.0.0.1:%1\r\nUpgrade: websocket\r\n"
                                      "Connection: Upgrade\r\nSec-WebSocket-Key: "
                                      "dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n")
                           .arg(port)
                           .toLatin1());
        waitFor([&] { return m_socket.bytesAvailable() > 0 && m_socket.peek(4096).contains("\r\n\r\n"); });
        const QByteArray head = m_socket.peek(4096);
        m_socket.read(head.indexOf("\r\n\r\n") + 4);
        sendMasked(QStringLiteral("{\"event\":\"hello\",\"token\":\"%1\"}").arg(token).toUtf8());
        m_socket.setReadBufferSize(1);
    }
    // Reads on again until the notice of what was missed has come, and gives
    // it: the page's frames are not masked, so their text stands in the stream.
    QByteArray skippedNotice() {
        m_socket.setReadBufferSize(0);
        const QByteArray mark("{\"event\":\"skipped\"");
        QByteArray in;
        waitFor([&] {
            in += m_socket.readAll();
            return in.contains(mark) && in.indexOf('}', in.indexOf(mark)) > 0;
        }, 20000);
        const qsizetype at = in.indexOf(mark);
        return at < 0 ? QByteArray() : in.mid(at, in.indexOf('}', at) + 1 - at);
    }

private:
    void sendMasked(const QByteArray& text) {
        QByteArray frame;
        frame.append(char(0x81));
        frame.append(char(0x80 | text.size())); // short texts only; the mask is zero
        frame.append(QByteArray(4, '\0'));
        m_socket.write(frame + text);
    }
    QTcpSocket m_socket;
};

class WebLimits : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        front = std::make_unique<WebFront>();
        port = freePort();
        ASSERT_TRUE(front->start(port));
        token = WebToken::Ensure(nullptr);
    }
    void TearDown() override { front.reset(); }

    bool console(const char* text) {
        return rtbChat(0).text().contains(QLatin1String(text));
    }

    std::unique_ptr<WebFront> front;
    int port = 0;
    QString token;
};

} // namespace

TEST_F(WebLimits, AnOversizedMessageClosesItsPageASeventeenthAndAWrongTokenSeeNothing) {
    Page big(port, token);
    Page other(port, token);
    ASSERT_TRUE(waitFor([&] { return big.heardType("welcome") && other.heardType("welcome"); }));
    other.socket.sendTextMessage(QString(64 * 1024, u'x')); // the most a page may send
    big.socket.sendTextMessage(QString(64 * 1024 + 1, u'x'));
    ASSERT_TRUE(waitFor([&] { return big.socket.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_EQ(big.socket.closeCode(), QWebSocketProtocol::CloseCodeTooMuchData);
    EXPECT_TRUE(waitFor([&] { return console("sent a message over 64 KiB and was closed"); }));
    EXPECT_EQ(other.socket.state(), QAbstractSocket::ConnectedState);
    EXPECT_EQ(front->pageCount(), 1);

    // Sixteen pages at most: the seventeenth is turned away.
    std::vector<std::unique_ptr<Page>> pages;
    for (int i = 1; i < WebFront::kMostPages; ++i)
        pages.push_back(std::make_unique<Page>(port, token));
    ASSERT_TRUE(waitFor([&] {
        return std::all_of(pages.begin(), pages.end(), [](auto& p) { return p->heardType("welcome"); });
    }));
    Page extra(port, token);
    ASSERT_TRUE(waitFor([&] { return extra.socket.state() == QAbstractSocket::UnconnectedState; }));
    ASSERT_FALSE(extra.heard.isEmpty());
    EXPECT_TRUE(extra.heard.first().contains(u"16 pages open already")) << extra.heard.first().toStdString();
    EXPECT_FALSE(extra.heardType("welcome"));

    pages.pop_back();
    Page guesser(port, QStringLiteral("guess"));
    ASSERT_TRUE(waitFor([&] { return guesser.socket.state() == QAbstractSocket::UnconnectedState; }));
    ASSERT_EQ(guesser.heard.size(), 1);
    EXPECT_TRUE(guesser.heard.first().contains(u"token is wrong"));
    EXPECT_TRUE(console("offered a wrong token"));
}

TEST_F(WebLimits, AStalledPageCostsABoundedQueueAndHearsWhatItMissed) {
    const int slot = loadConnected(QStringLiteral("Busy"));
    StalledPage stalled(port, token);
    Page reader(port, token);
    ASSERT_TRUE(waitFor([&] { return front->pageCount() == 2 && reader.heardType("welcome"); }));
    const QString text(300, u'w');
    const auto behind = [&]() -> const WebPage* {
        for (const WebPage* page : front->pages())
            if (page->outbox().skippedTotal() > 0) return page;
        return nullptr;
    };
    // More than the kernel's buffers hold between the two ends, in bursts
    // the view takes without emptying itself.
    for (int batch = 0; batch < 5000 && !behind(); ++batch) {
        for (int i = 0; i < 100; ++i)
            WriteChat(slot, Status::Information, text);
        QCoreApplication::processEvents();
    }
    const WebPage* slow = behind();
    ASSERT_NE(slow, nullptr) << "no page fell behind; the reader heard " << reader.heard.size() << " messages, last " << reader.heard.value(reader.heard.size() - 1).left(200).toStdString();
    EXPECT_LE(slow->outbox().queued(), PageOutbox::kMostQueued + 1);
    // The page that reads heard everything, and the stalled one, once it
    // reads again, hears how much it missed.
    EXPECT_FALSE(reader.heardType("skipped"));
    const QByteArray notice = stalled.skippedNotice();
    EXPECT_TRUE(notice.startsWith("{\"event\":\"skipped\",\"lines\":") && !notice.contains(":0}"))
        << notice.constData();
}

TEST_F(WebLimits, TenThousandConnectionsLeaveThePageReachable) {
    // In waves the size of the listening backlog, so that the test's own
    // connects are not left waiting for the kernel to retry them.
    for (int round = 0; round < 250; ++round) {
        std::vector<std::unique_ptr<QTcpSocket>> flood;
        for (int i = 0; i < 40; ++i) {
            flood.push_back(std::make_unique<QTcpSocket>());
            flood.back()->connectToHost(QHostAddress::LocalHost, quint16(port));
        }
        waitFor([&] {
            return std::all_of(flood.begin(), flood.end(), [](auto& s) {
                return s->state() == QAbstractSocket::ConnectedState ||
                       s->state() == QAbstractSocket::UnconnectedState;
            });
        }, 5000);
        for (auto& s : flood)
            s->write("GET / HTTP/1.1\r\nHost: x\r\n");
        QCoreApplication::processEvents();
        for (auto& s : flood)
            s->abort();
    }
    EXPECT_GT(front->listener().turnedAway(), 0);
    // Once the bot has seen the flood go, a page gets in.
    EXPECT_TRUE(waitFor([&] { return front->listener().openConnections() == 0; }));
    Page late(port, token);
    EXPECT_TRUE(waitFor([&] { return late.heardType("welcome"); }, 20000));
}

// The control panel's port moves the page at once, dropping the pages on the
// old one, and a port of 0 closes it.
TEST_F(WebLimits, AChangedPortMovesThePageAndPortZeroClosesIt) {
    ASSERT_TRUE(SettingsWrapper::instance().setWebAddress(QStringLiteral("127.0.0.1")));
    EXPECT_EQ(front->port(), port) << "a new address keeps the port the bot was started on";
    Page before(port, token);
    ASSERT_TRUE(waitFor([&] { return before.heardType("welcome"); }));
    const int moved = freePort();
    ASSERT_TRUE(SettingsWrapper::instance().setWebPort(moved));
    EXPECT_EQ(front->port(), moved);
    EXPECT_TRUE(waitFor([&] { return before.socket.state() == QAbstractSocket::UnconnectedState; }));
    Page after(moved, token);
    EXPECT_TRUE(waitFor([&] { return after.heardType("welcome"); }));

    ASSERT_TRUE(SettingsWrapper::instance().setWebPort(0));
    EXPECT_EQ(front->port(), 0);
    EXPECT_TRUE(console("The web page is closed."));
    QTcpSocket old;
    old.connectToHost(QHostAddress::LocalHost, quint16(moved));
    EXPECT_FALSE(old.waitForConnected(500));
}
