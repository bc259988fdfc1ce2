#pragma once

#include <QObject>

class QTcpServer;

namespace sandbox {

class SandboxContext;

// The two listening sockets on 127.0.0.1: BNCS for chat, BNLS for version checks. Every
// client gets a connection of its own; all run on the one event loop.
class SandboxServer : public QObject {
    Q_OBJECT

public:
    explicit SandboxServer(SandboxContext& context, QObject* parent = nullptr);
    ~SandboxServer() override;

    // Binds both ports; false and the reason when one can't be had.
    bool listen(QString& error);
    quint16 bncsPort() const;
    quint16 bnlsPort() const;

private:
    void acceptBncs();
    void acceptBnls();

    SandboxContext& m_context;
    QTcpServer* m_bncs;
    QTcpServer* m_bnls;
};

} // namespace sandbox
