#include "web/HeadlessChromium.h"

#include "common/SandboxProcess.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStandardPaths>
#include <QWebSocket>

HeadlessChromium::HeadlessChromium() = default;

HeadlessChromium::~HeadlessChromium() {
    if (m_socket) m_socket->abort();
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) m_process.kill();
        m_process.waitForFinished(5000);
    }
}

QString HeadlessChromium::binary() {
    return QStandardPaths::findExecutable(QStringLiteral("chromium"));
}

bool HeadlessChromium::start(QString* error) {
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(binary(), {QStringLiteral("--headless=new"), QStringLiteral("--no-sandbox"),
                               QStringLiteral("--disable-gpu"), QStringLiteral("--no-first-run"),
                               QStringLiteral("--remote-debugging-port=0"),
                               QStringLiteral("--remote-debugging-address=127.0.0.1"),
                               QStringLiteral("--user-data-dir=") + m_profile.path(),
                               QStringLiteral("about:blank")});
    if (!m_process.waitForStarted(10000)) {
        *error = QStringLiteral("chromium did not start: ") + m_process.errorString();
        return false;
    }
    // The browser writes the port it took into its profile folder.
    QFile portFile(QDir(m_profile.path()).filePath(QStringLiteral("DevToolsActivePort")));
    if (!waitFor([&] { return portFile.exists() && portFile.size() > 0; }, 30000)) {
        *error = QStringLiteral("chromium wrote no DevToolsActivePort");
        return false;
    }
    portFile.open(QIODevice::ReadOnly);
    const int port = QString::fromLatin1(portFile.readLine()).trimmed().toInt();
    QNetworkAccessManager network;
    QNetworkReply* reply =
        network.get(QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:%1/json/list").arg(port))));
    waitFor([&] { return reply->isFinished(); });
    QString pageUrl;
    for (const QJsonValue& target : QJsonDocument::fromJson(reply->readAll()).array()) {
        if (target[QStringLiteral("type")].toString() == u"page")
            pageUrl = target[QStringLiteral("webSocketDebuggerUrl")].toString();
    }
    reply->deleteLater();
    if (pageUrl.isEmpty()) {
        *error = QStringLiteral("chromium offered no page to drive");
        return false;
    }
    m_socket = std::make_unique<QWebSocket>();
    QObject::connect(m_socket.get(), &QWebSocket::textMessageReceived, [this](const QString& text) {
        m_replies.append(QJsonDocument::fromJson(text.toUtf8()).object());
    });
    m_socket->open(QUrl(pageUrl));
    if (!waitFor([&] { return m_socket->state() == QAbstractSocket::ConnectedState; })) {
        *error = QStringLiteral("the page's DevTools socket did not open");
        return false;
    }
    return true;
}

QJsonObject HeadlessChromium::call(const QString& method, const QJsonObject& params) {
    const int id = m_nextId++;
    m_socket->sendTextMessage(QString::fromUtf8(
        QJsonDocument(QJsonObject{{QStringLiteral("id"), id},
                                  {QStringLiteral("method"), method},
                                  {QStringLiteral("params"), params}})
            .toJson(QJsonDocument::Compact)));
    QJsonObject result;
    waitFor([&] {
        for (qsizetype i = 0; i < m_replies.size(); ++i) {
            if (m_replies[i][QStringLiteral("id")].toInt() == id) {
                result = m_replies.takeAt(i);
                return true;
            }
        }
        // Events the driver did not ask for are of no use to it.
        m_replies.erase(std::remove_if(m_replies.begin(), m_replies.end(),
                                       [](const QJsonObject& o) { return !o.contains(u"id"); }),
                        m_replies.end());
        return false;
    });
    return result[QStringLiteral("result")].toObject();
}

bool HeadlessChromium::navigate(const QString& url) {
    call(QStringLiteral("Page.navigate"), {{QStringLiteral("url"), url}});
    return waitUntil(QStringLiteral("document.readyState === 'complete' && location.href === '%1'")
                         .arg(url));
}

QJsonValue HeadlessChromium::evaluate(const QString& expression) {
    const QJsonObject result = call(QStringLiteral("Runtime.evaluate"),
                                    {{QStringLiteral("expression"), expression},
                                     {QStringLiteral("returnByValue"), true}});
    return result[QStringLiteral("result")].toObject()[QStringLiteral("value")];
}

bool HeadlessChromium::waitUntil(const QString& expression, int ms) {
    return waitFor([&] { return evaluate(expression).toBool(); }, ms);
}
