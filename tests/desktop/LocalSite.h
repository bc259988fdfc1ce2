#pragma once

#include <QHostAddress>
#include <QMap>
#include <QTcpServer>
#include <QTcpSocket>

// A web site on 127.0.0.1 for the tests: each path answers with its text,
// any other with 404; a silent site takes the connection and never answers.
class LocalSite : public QObject {
public:
    LocalSite() {
        server.listen(QHostAddress::LocalHost, 0);
        connect(&server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                ++connections;
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
            }
        });
    }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(server.serverPort()); }

    QMap<QString, QByteArray> files;
    bool silent = false;
    int connections = 0;

private:
    void answer(QTcpSocket* socket) {
        const QByteArray request = socket->readAll();
        if (silent || !request.contains("\r\n\r\n")) return;
        const QString path = QString::fromLatin1(request.split(' ').value(1));
        const bool found = files.contains(path);
        const QByteArray body = found ? files.value(path) : QByteArray("Not found");
        socket->write((found ? "HTTP/1.1 200 OK\r\n" : "HTTP/1.1 404 Not Found\r\n") +
                      QByteArray("Content-Type: text/plain\r\nConnection: close\r\n") +
                      "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer server;
};
