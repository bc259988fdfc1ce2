#include "sandbox/PeerConnection.h"

#include "sandbox/WireSession.h"

#include <QTcpSocket>
#include <QTimer>

namespace sandbox {
namespace {

// A client that doesn't take the last bytes within this time is cut off.
constexpr int kFlushTimeoutMs = 5000;
// Nor may a client that stops reading make the server hold its chat without end.
constexpr qint64 kLargestBacklog = 16 << 20;

} // namespace

PeerConnection::PeerConnection(QTcpSocket* socket, const SessionFactory& makeSession,
                               QObject* parent)
    : QObject(parent), m_socket(socket) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    WireLink link;
    link.send = [this](const QByteArray& bytes) {
        m_socket->write(bytes);
        if (m_socket->bytesToWrite() > kLargestBacklog && !m_dropping) {
            m_dropping = true;
            // Not now: the hub may be in the middle of telling a channel.
            QMetaObject::invokeMethod(
                this, [this] { m_session->close(QStringLiteral("not reading")); },
                Qt::QueuedConnection);
        }
    };
    link.close = [this] { serverHangsUp(); };
    m_session = makeSession(std::move(link));
    connect(m_socket, &QTcpSocket::readyRead, this, &PeerConnection::readAll);
    connect(m_socket, &QTcpSocket::disconnected, this, &PeerConnection::connectionEnded);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &PeerConnection::connectionEnded);
    if (m_socket->bytesAvailable() > 0) readAll();
}

PeerConnection::~PeerConnection() = default;

void PeerConnection::readAll() {
    const QByteArray bytes = m_socket->readAll();
    if (!m_closing) m_session->receive(bytes);
}

void PeerConnection::serverHangsUp() {
    if (m_closing) return;
    m_closing = true;
    m_socket->disconnectFromHost();
    if (m_socket->state() == QAbstractSocket::UnconnectedState)
        finish();
    else
        QTimer::singleShot(kFlushTimeoutMs, this, &PeerConnection::finish);
}

void PeerConnection::connectionEnded() {
    m_closing = true;
    m_session->close(QStringLiteral("connection ended"));
    finish();
}

void PeerConnection::finish() {
    if (m_finished) return;
    m_finished = true;
    m_socket->abort();
    deleteLater();
}

} // namespace sandbox
