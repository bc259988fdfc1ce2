#pragma once

#include <QObject>
#include <functional>
#include <memory>

class QTcpSocket;

namespace sandbox {

class WireSession;
struct WireLink;

// A client's socket and the session that serves it. When the server hangs up, what it has
// written still goes out before the socket closes; the object deletes itself, later, once
// the connection is gone.
class PeerConnection : public QObject {
    Q_OBJECT

public:
    using SessionFactory = std::function<std::unique_ptr<WireSession>(WireLink)>;

    PeerConnection(QTcpSocket* socket, const SessionFactory& makeSession,
                   QObject* parent = nullptr);
    ~PeerConnection() override;

private:
    void readAll();
    void serverHangsUp();
    void connectionEnded();
    void finish();

    QTcpSocket* m_socket;
    std::unique_ptr<WireSession> m_session;
    bool m_closing = false;
    bool m_dropping = false; // the client stopped reading; its session ends shortly
    bool m_finished = false;
};

} // namespace sandbox
