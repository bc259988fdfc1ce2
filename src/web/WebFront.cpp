#include "web/WebFront.h"

#include "config/SettingsWrapper.h"
#include "control/ChatFeed.h"
#include "control/SteeringVerbs.h"
#include "control/WebToken.h"
#include "presentation/ChatWriter.h"
#include "web/PageFeed.h"
#include "web/WebListener.h"
#include "web/WebPage.h"

#include <QFile>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QWebSocket>

namespace {

// The page's files come from the program itself; what the browser may do
// with them is kept to this one origin.
QHttpServerResponse pageFile(const QString& name, const QByteArray& type) {
    QFile file(QStringLiteral(":/web/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return QHttpServerResponse(QHttpServerResponse::StatusCode::NotFound);
    QHttpServerResponse response(type, file.readAll());
    response.addHeader("Cache-Control", "no-store");
    response.addHeader("X-Content-Type-Options", "nosniff");
    response.addHeader("X-Frame-Options", "DENY");
    response.addHeader("Referrer-Policy", "no-referrer");
    response.addHeader("Content-Security-Policy",
                       "default-src 'self'; connect-src 'self' ws: wss:; img-src 'self' data:");
    return response;
}

QByteArray message(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// What a page may ask: the steering verbs, as the control socket takes them
// ({"args": [...]}) and with the same answer ({"status", "out", "err"}).
// Settings, files and lists stay with the terminal and the window.
VerbResult runRequest(const QJsonObject& request) {
    QStringList args;
    for (const QJsonValue& word : request.value(QStringLiteral("args")).toArray())
        args.append(word.toString());
    static const QStringList allowed{QStringLiteral("status"), QStringLiteral("send"),
                                     QStringLiteral("load"), QStringLiteral("unload"),
                                     QStringLiteral("connect"), QStringLiteral("disconnect"),
                                     QStringLiteral("reconnect")};
    if (!allowed.contains(args.value(0)))
        return VerbResult::refused(QStringLiteral("A page may ask for ") +
                                   allowed.join(QStringLiteral(", ")) + QStringLiteral(" only."));
    return SteeringVerbs::Run(args);
}

} // namespace

WebFront::WebFront(QObject* parent) : QObject(parent) {
    open();
    connect(&SettingsWrapper::instance(), &SettingsWrapper::settingChanged, this,
            &WebFront::settingChanged);
}

// A server, its listener and the routes, not listening yet.
void WebFront::open() {
    m_http = std::make_unique<QHttpServer>();
    m_listener = new WebListener(this);
    addRoutes();
    connect(m_http.get(), &QHttpServer::newWebSocketConnection, this, &WebFront::acceptPages);
}

// Every page goes, then the server: a front ready to open again.
void WebFront::close() {
    for (WebPage* page : m_pages)
        delete page;
    m_pages.clear();
    delete m_feed;
    m_feed = nullptr;
    m_http.reset();
    delete m_listener.data();
    m_port = 0;
}

void WebFront::settingChanged(const QString& property) {
    if (property != u"WebPort" && property != u"WebAddress") return;
    const bool wasOn = m_port != 0;
    // A new port setting overrides --web; a new address keeps the port in use.
    if (property == u"WebPort") m_portGiven = 0;
    close();
    open();
    if (!start(m_portGiven) && wasOn && SettingsWrapper::instance().WebPort() <= 0)
        WriteChat(0, Status::Information, QStringLiteral("The web page is closed."));
}

// Made only once the page listens: a bot without it follows no lines.
void WebFront::startFeed() {
    m_feed = new PageFeed(this);
    connect(m_feed, &PageFeed::lines, this, [this](const QByteArray& message, int count) {
        for (WebPage* page : m_pages) {
            if (page->admitted()) page->sendLines(message, count);
        }
    });
    connect(m_feed, &PageFeed::state, this, [this](const QString& key, const QByteArray& message) {
        for (WebPage* page : m_pages) {
            if (page->admitted()) page->sendState(key, message);
        }
    });
}

WebFront::~WebFront() {
    close();
}

bool WebFront::start(int port) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    m_portGiven = std::max(port, 0);
    if (port <= 0) port = settings.WebPort();
    if (port <= 0) return false;
    if (port > 65535) {
        WriteChat(0, Status::Error,
                  QStringLiteral("The web page's port %1 is not a port (1 to 65535).").arg(port));
        return false;
    }
    const QString addressText = settings.WebAddress().trimmed();
    const QHostAddress address(addressText.isEmpty() ? QStringLiteral("127.0.0.1") : addressText);
    if (address.isNull()) {
        WriteChat(0, Status::Error,
                  QStringLiteral("The web page's address '%1' (WebAddress) is not an address.")
                      .arg(addressText));
        return false;
    }
    QString error;
    if (WebToken::Ensure(&error).isEmpty()) {
        WriteChat(0, Status::Error, QStringLiteral("The web page stays off: ") + error);
        return false;
    }
    if (!m_listener->listen(address, quint16(port))) {
        WriteChat(0, Status::Error,
                  QStringLiteral("The web page could not listen on %1 port %2: %3.")
                      .arg(address.toString())
                      .arg(port)
                      .arg(m_listener->errorString()));
        return false;
    }
    startFeed();
    m_http->bind(m_listener);
    m_port = m_listener->serverPort();
    const QString where = address.protocol() == QAbstractSocket::IPv6Protocol
                              ? QStringLiteral("[%1]:%2").arg(address.toString()).arg(m_port)
                              : QStringLiteral("%1:%2").arg(address.toString()).arg(m_port);
    WriteChat(0, Status::Success,
              QStringLiteral("The web page is at http://%1/ (its token: corvantide web-token).")
                  .arg(where));
    if (!address.isLoopback())
        WriteChat(0, Status::Warning,
                  QStringLiteral("The web page listens beyond this machine, without TLS: put a "
                                 "reverse proxy with TLS in front of it."));
    return true;
}

void WebFront::addRoutes() {
    m_http->route(QStringLiteral("/"),
                  [] { return pageFile(QStringLiteral("index.html"), "text/html; charset=utf-8"); });
    m_http->route(QStringLiteral("/app.js"), [] {
        return pageFile(QStringLiteral("app.js"), "text/javascript; charset=utf-8");
    });
    m_http->route(QStringLiteral("/style.css"),
                  [] { return pageFile(QStringLiteral("style.css"), "text/css; charset=utf-8"); });
    // The HTTP server upgrades a request to a WebSocket only on a path that
    // a route takes; this one leaves such a socket to it unanswered.
    m_http->route(QStringLiteral("/socket"),
                  [](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
                      if (request.value("upgrade").compare("websocket", Qt::CaseInsensitive) != 0)
                          responder.write(QHttpServerResponder::StatusCode::BadRequest);
                  });
}

void WebFront::acceptPages() {
    while (m_http->hasPendingWebSocketConnections()) {
        std::unique_ptr<QWebSocket> socket = m_http->nextPendingWebSocketConnection();
        if (!socket) continue;
        auto* page = new WebPage(std::move(socket), nullptr);
        if (int(m_pages.size()) >= kMostPages) {
            page->refuse(QStringLiteral("There are %1 pages open already; close one first.")
                             .arg(kMostPages));
            connect(page, &WebPage::closed, page, &QObject::deleteLater);
            continue;
        }
        m_pages.push_back(page);
        connect(page, &WebPage::received, this, &WebFront::onMessage);
        connect(page, &WebPage::closed, this, &WebFront::onClosed);
    }
}

void WebFront::onMessage(WebPage* page, const QString& text) {
    if (!page->admitted()) {
        greet(page, text);
        return;
    }
    const VerbResult result = runRequest(QJsonDocument::fromJson(text.toUtf8()).object());
    page->sendNow(message({{QStringLiteral("event"), QStringLiteral("reply")},
                           {QStringLiteral("status"), result.status},
                           {QStringLiteral("out"), result.out},
                           {QStringLiteral("err"), result.err}}));
}

// The first message is {"event": "hello", "token": ...}; anything else, or a
// wrong token, closes the page.
void WebFront::greet(WebPage* page, const QString& text) {
    const QJsonObject hello = QJsonDocument::fromJson(text.toUtf8()).object();
    const QByteArray offered = hello.value(QStringLiteral("token")).toString().toUtf8();
    QString error;
    const QByteArray expected = WebToken::Ensure(&error).toUtf8();
    if (hello.value(QStringLiteral("event")).toString() != u"hello" ||
        !WebToken::Matches(offered, expected)) {
        reportWrongToken(QHostAddress(page->peer().section(u' ', 0, 0)));
        page->refuse(QStringLiteral("The token is wrong. `corvantide web-token` prints it."));
        return;
    }
    // Lines still on their way go to the pages already open; the new one
    // finds them in its snapshot.
    ChatFeed::instance().flush();
    page->admit();
    m_listener->admit(page->peer());
    m_feed->setListening(true);
    page->sendNow(message({{QStringLiteral("event"), QStringLiteral("welcome")}}));
    int part = 0;
    for (const QByteArray& snapshot : m_feed->snapshot())
        page->sendState(QStringLiteral("snapshot %1").arg(part++), snapshot);
}

void WebFront::onClosed(WebPage* page) {
    std::erase(m_pages, page);
    m_listener->release(page->peer());
    page->deleteLater();
    const bool anyAdmitted =
        std::any_of(m_pages.begin(), m_pages.end(), [](WebPage* p) { return p->admitted(); });
    m_feed->setListening(anyAdmitted);
}

// One line for the first wrong token and then at most one a minute with the
// count, so a flood of guesses cannot flood the console.
void WebFront::reportWrongToken(const QHostAddress& from) {
    ++m_wrongTokens;
    if (!m_clock.isValid()) m_clock.start();
    const qint64 now = m_clock.elapsed();
    if (m_lastWrongTokenLine >= 0 && now - m_lastWrongTokenLine < 60000) return;
    m_lastWrongTokenLine = now;
    WriteChat(0, Status::Warning,
              QStringLiteral("A web page from %1 offered a wrong token (%2 so far).")
                  .arg(from.toString())
                  .arg(m_wrongTokens));
}
