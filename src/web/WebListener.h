#pragma once

#include <QPointer>
#include <QSet>
#include <QTcpServer>
#include <vector>

class QTcpSocket;

// The web page's TCP door. However many connections arrive, the bot keeps
// only a bounded number open (each costs a descriptor the bot's own sockets
// need), gives each a short time to become a page that offered its token,
// and drops a request that grows past any page's size.
class WebListener : public QTcpServer {
    Q_OBJECT
public:
    static constexpr int kMostConnections = 48;
    static constexpr int kHandshakeMs = 15000;
    static constexpr qint64 kLongestRequest = 1024 * 1024;

    explicit WebListener(QObject* parent = nullptr);

    // A page on this peer offered its token: its connection stays open.
    void admit(const QString& peer) { m_admitted.insert(peer); }
    void release(const QString& peer) { m_admitted.remove(peer); }
    static QString peerOf(const QHostAddress& address, quint16 port);

    int openConnections();
    qint64 turnedAway() const { return m_turnedAway; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void expire(QTcpSocket* socket);

    std::vector<QPointer<QTcpSocket>> m_open;
    QSet<QString> m_admitted;
    qint64 m_turnedAway = 0;
};
