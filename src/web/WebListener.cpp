#include "web/WebListener.h"

#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <unistd.h>

WebListener::WebListener(QObject* parent) : QTcpServer(parent) {
    setMaxPendingConnections(kMostConnections);
}

QString WebListener::peerOf(const QHostAddress& address, quint16 port) {
    return address.toString() + u' ' + QString::number(port);
}

int WebListener::openConnections() {
    std::erase_if(m_open, [](const QPointer<QTcpSocket>& s) {
        return s.isNull() || s->state() == QAbstractSocket::UnconnectedState;
    });
    return int(m_open.size());
}

void WebListener::incomingConnection(qintptr descriptor) {
    if (openConnections() >= kMostConnections) {
        ::close(int(descriptor));
        ++m_turnedAway;
        return;
    }
    auto* socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    m_open.emplace_back(socket);
    // The HTTP server takes the socket and, for a page, hands it to the
    // WebSocket (which drops this watch with every other connection of the
    // socket); until then a request that keeps growing is no page's.
    connect(socket, &QTcpSocket::readyRead, socket, [socket] {
        const qint64 received = socket->property("received").toLongLong() + socket->bytesAvailable();
        socket->setProperty("received", received);
        if (received > kLongestRequest) socket->abort();
    });
    QTimer::singleShot(kHandshakeMs, socket, [this, socket] { expire(socket); });
    addPendingConnection(socket);
}

void WebListener::expire(QTcpSocket* socket) {
    if (m_admitted.contains(peerOf(socket->peerAddress(), socket->peerPort()))) return;
    socket->abort();
}
