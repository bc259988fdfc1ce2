#include "platform/SocketControl.h"

#include <QTcpSocket>

#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

SocketControl::SocketControl(QObject* parent) : QObject(parent) {}

SocketControl::~SocketControl() {
    dropSocket();
}

void SocketControl::dropSocket() {
    if (!m_socket) return;
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
    m_socket = nullptr;
}

void SocketControl::Connect(const QString& host, quint16 port) {
    Close();
    m_remoteHost = host;
    m_remotePort = port;
    m_state = Connecting;
    if (m_detached) return;
    m_socket = new QTcpSocket(this);
    connect(m_socket, &QTcpSocket::connected, this, &SocketControl::onConnected);
    connect(m_socket, &QTcpSocket::readyRead, this, &SocketControl::onReadyRead);
    connect(m_socket, &QTcpSocket::disconnected, this, &SocketControl::onDisconnected);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &SocketControl::onError);
    m_socket->connectToHost(host, port);
}

void SocketControl::Close() {
    dropSocket();
    m_pending.clear();
    m_state = Closed;
}

void SocketControl::SendData(const QByteArray& data) {
    if (m_state != Connected) return;
    if (m_detached) {
        sent.append(data);
        return;
    }
    const qsizetype taken = sendDirect(data);
    if (taken < data.size()) m_socket->write(data.constData() + taken, data.size() - taken);
}

// Hands the bytes straight to the kernel while Qt holds none queued, so the
// order on the wire stays the order sent. Queuing them in Qt instead turns a
// write notifier on and off for every frame, and the event loop's cost of
// that grows with the number of open sockets: with a thousand profiles
// logging on it was a tenth of the bot's work. What the kernel does not take
// (a full send window, an error) goes through Qt, which waits or reports.
qsizetype SocketControl::sendDirect(const QByteArray& data) {
    if (m_socket->bytesToWrite() > 0) return 0;
    const int fd = int(m_socket->socketDescriptor());
    if (fd < 0) return 0;
    ssize_t taken;
    do {
        taken = ::send(fd, data.constData(), size_t(data.size()), MSG_NOSIGNAL);
    } while (taken < 0 && errno == EINTR);
    return taken < 0 ? 0 : qsizetype(taken);
}

QByteArray SocketControl::GetData() {
    QByteArray data;
    data.swap(m_pending);
    return data;
}

qintptr SocketControl::SocketDescriptor() const {
    return m_socket ? m_socket->socketDescriptor() : -1;
}

void SocketControl::onConnected() {
    m_state = Connected;
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // A peer that vanishes without a reset (a cable pulled, a route lost)
    // would otherwise hold the connection open for a quarter of an hour.
    const unsigned limit = kUnacknowledgedLimitMs;
    ::setsockopt(int(m_socket->socketDescriptor()), IPPROTO_TCP, TCP_USER_TIMEOUT, &limit,
                 sizeof limit);
    Q_EMIT connected();
}

void SocketControl::onReadyRead() {
    m_pending += m_socket->readAll();
    if (!m_pending.isEmpty()) Q_EMIT dataArrival(m_pending.size());
}

void SocketControl::onDisconnected() {
    // The peer closed: the control stays "closing" until its owner closes it.
    if (m_state != Connected) return;
    m_state = Closing;
    Q_EMIT closed();
}

void SocketControl::onError(QAbstractSocket::SocketError socketError) {
    if (socketError == QAbstractSocket::RemoteHostClosedError)
        return; // reported as a close, as the peer meant it
    const QString description = m_socket ? m_socket->errorString() : QString();
    int number = winsockNumber(socketError);
    // The kernel gave up on a peer that stopped acknowledging.
    if (description == QString::fromLocal8Bit(std::strerror(ETIMEDOUT))) number = 10060;
    m_state = Error;
    Q_EMIT error(number, description);
}

void SocketControl::simulateConnected() {
    m_state = Connected;
    Q_EMIT connected();
}

void SocketControl::simulateQuietConnection() {
    m_detached = true;
    if (m_state == Connected) return;
    Connect(QStringLiteral("localhost"), 1);
    m_state = Connected;
}

void SocketControl::simulateData(const QByteArray& bytes) {
    m_pending += bytes;
    Q_EMIT dataArrival(m_pending.size());
}

void SocketControl::simulateClose() {
    m_state = Closing;
    Q_EMIT closed();
}

void SocketControl::simulateError(int number, const QString& description) {
    m_state = Error;
    Q_EMIT error(number, description);
}

int SocketControl::winsockNumber(QAbstractSocket::SocketError error) {
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return 10061;
    case QAbstractSocket::RemoteHostClosedError:
        return 10054;
    case QAbstractSocket::HostNotFoundError:
        return 11004;
    case QAbstractSocket::SocketAccessError:
        return 10013;
    case QAbstractSocket::SocketResourceError:
        return 10055;
    case QAbstractSocket::SocketTimeoutError:
        return 10060;
    case QAbstractSocket::NetworkError:
        return 10065;
    case QAbstractSocket::AddressInUseError:
        return 10048;
    case QAbstractSocket::SocketAddressNotAvailableError:
        return 10049;
    case QAbstractSocket::UnsupportedSocketOperationError:
        return 10045;
    case QAbstractSocket::DatagramTooLargeError:
        return 10040;
    case QAbstractSocket::TemporaryError:
        return 10035;
    default:
        return 10053; // the connection was aborted by the local machine
    }
}
