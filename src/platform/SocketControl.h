#pragma once

#include <QAbstractSocket>
#include <QByteArray>
#include <QObject>
#include <QString>

class QTcpSocket;

// One TCP connection with the face of the Windows socket control the session
// code was written against: numeric states, Winsock error numbers, and events
// for connect, data, close and error.
//
// A socket can also run detached from the network, for protocol tests: what is
// sent is recorded and what "arrives" is handed in by the test.
class SocketControl : public QObject {
    Q_OBJECT
public:
    enum State : int {
        Closed = 0,
        Open = 1,
        Listening = 2,
        ConnectionPending = 3,
        ResolvingHost = 4,
        HostResolved = 5,
        Connecting = 6,
        Connected = 7,
        Closing = 8,
        Error = 9,
    };

    explicit SocketControl(QObject* parent = nullptr);
    ~SocketControl() override;

    void Connect(const QString& host, quint16 port);
    void Close();
    void SendData(const QByteArray& data);
    QByteArray GetData();
    int State() const { return m_state; }
    // The kernel's socket, -1 while there is none (detached or closed).
    qintptr SocketDescriptor() const;
    // How long what was sent may stay unacknowledged before the kernel gives
    // the connection up: with a keep-alive every 40 seconds, a peer gone
    // silent is noticed within two minutes. Reported as error 10060.
    static constexpr unsigned kUnacknowledgedLimitMs = 75000;
    QString RemoteHost() const { return m_remoteHost; }
    quint16 RemotePort() const { return m_remotePort; }

    // Free text a form shows beside the socket; the slot's profile name.
    QString Tag;

    // Detached mode for tests.
    void setDetached(bool detached) { m_detached = detached; }
    bool isDetached() const { return m_detached; }
    void simulateConnected();
    // Detached and connected to "localhost" without the connect event: a
    // socket that a test, benchmark or fuzzer feeds by hand. Does nothing to
    // a socket already connected.
    void simulateQuietConnection();
    void simulateData(const QByteArray& bytes);
    void simulateClose();
    void simulateError(int number, const QString& description);
    // Everything sent while detached, one element per SendData call.
    QList<QByteArray> sent;

    static int winsockNumber(QAbstractSocket::SocketError error);

Q_SIGNALS:
    void connected();
    void dataArrival(qint64 bytesTotal);
    void closed();
    void error(int number, const QString& description);

private:
    void onConnected();
    void onReadyRead();
    void onDisconnected();
    void onError(QAbstractSocket::SocketError socketError);
    void dropSocket();
    qsizetype sendDirect(const QByteArray& data);

    QTcpSocket* m_socket = nullptr;
    int m_state = Closed;
    bool m_detached = false;
    QString m_remoteHost;
    quint16 m_remotePort = 0;
    QByteArray m_pending;
};
