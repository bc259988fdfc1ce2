#include "web/WebPage.h"

#include "presentation/ChatWriter.h"
#include "web/WebListener.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QWebSocket>

WebPage::WebPage(std::unique_ptr<QWebSocket> socket, QObject* parent)
    : QObject(parent), m_socket(std::move(socket)) {
    m_socket->setMaxAllowedIncomingMessageSize(quint64(kLongestMessage));
    m_socket->setMaxAllowedIncomingFrameSize(quint64(kLongestMessage));
    connect(m_socket.get(), &QWebSocket::textMessageReceived, this,
            [this](const QString& message) { Q_EMIT received(this, message); });
    // Pages speak text; anything else is not our page.
    connect(m_socket.get(), &QWebSocket::binaryMessageReceived, this,
            [this] { refuse(QStringLiteral("The bot takes text messages only.")); });
    connect(m_socket.get(), &QWebSocket::bytesWritten, this, [this](qint64 bytes) {
        m_outbox.written(bytes);
        pump();
    });
    connect(m_socket.get(), &QWebSocket::disconnected, this, &WebPage::onDisconnected);
}

WebPage::~WebPage() {
    if (m_socket) m_socket->disconnect(this);
}

QString WebPage::peer() const {
    return WebListener::peerOf(m_socket->peerAddress(), m_socket->peerPort());
}

void WebPage::sendLines(const QByteArray& message, int count) {
    m_outbox.pushLines(message, count);
    pump();
}

void WebPage::sendState(const QString& key, const QByteArray& message) {
    m_outbox.pushState(key, message);
    pump();
}

// The messages are JSON text as UTF-8, one object a line, as the control
// socket carries them; they go in binary frames so that the bytes made once
// for every page are not converted again for each.
void WebPage::sendNow(const QByteArray& message) {
    if (m_closed) return;
    m_outbox.sent(m_socket->sendBinaryMessage(message));
}

void WebPage::refuse(const QString& text) {
    if (m_closed) return;
    sendNow(QJsonDocument(QJsonObject{{QStringLiteral("event"), QStringLiteral("refused")},
                                      {QStringLiteral("text"), text}})
                .toJson(QJsonDocument::Compact));
    m_socket->close(QWebSocketProtocol::CloseCodePolicyViolated, text.left(120));
}

void WebPage::pump() {
    if (m_closed) return;
    for (QByteArray message = m_outbox.take(); !message.isEmpty(); message = m_outbox.take())
        m_outbox.sent(m_socket->sendBinaryMessage(message));
}

void WebPage::onDisconnected() {
    if (m_closed) return;
    m_closed = true;
    if (m_socket->closeCode() == QWebSocketProtocol::CloseCodeTooMuchData)
        WriteChat(0, Status::Error,
                  QStringLiteral("A web page from %1 sent a message over 64 KiB and was closed.")
                      .arg(m_socket->peerAddress().toString()));
    Q_EMIT closed(this);
}
