#include "sandbox/SandboxServer.h"

#include "sandbox/BncsSession.h"
#include "sandbox/BnlsSession.h"
#include "sandbox/PeerConnection.h"
#include "sandbox/SandboxContext.h"

#include <QTcpServer>
#include <QTcpSocket>

namespace sandbox {

SandboxServer::SandboxServer(SandboxContext& context, QObject* parent)
    : QObject(parent), m_context(context), m_bncs(new QTcpServer(this)),
      m_bnls(new QTcpServer(this)) {
    // Hundreds of clients may connect in one burst.
    m_bncs->setListenBacklogSize(1024);
    m_bnls->setListenBacklogSize(1024);
    connect(m_bncs, &QTcpServer::newConnection, this, &SandboxServer::acceptBncs);
    connect(m_bnls, &QTcpServer::newConnection, this, &SandboxServer::acceptBnls);
}

SandboxServer::~SandboxServer() = default;

bool SandboxServer::listen(QString& error) {
    const QHostAddress loopback(QHostAddress::LocalHost);
    if (!m_bncs->listen(loopback, m_context.options.bncsPort)) {
        error = QStringLiteral("BNCS port %1: %2")
                    .arg(m_context.options.bncsPort)
                    .arg(m_bncs->errorString());
        return false;
    }
    if (!m_bnls->listen(loopback, m_context.options.bnlsPort)) {
        error = QStringLiteral("BNLS port %1: %2")
                    .arg(m_context.options.bnlsPort)
                    .arg(m_bnls->errorString());
        m_bncs->close();
        return false;
    }
    return true;
}

quint16 SandboxServer::bncsPort() const {
    return m_bncs->serverPort();
}

quint16 SandboxServer::bnlsPort() const {
    return m_bnls->serverPort();
}

namespace {

// Every waiting client of a listener gets a connection with a session of the kind given.
template <typename Session>
void acceptAll(QTcpServer* listener, SandboxContext& context, QObject* owner) {
    while (QTcpSocket* socket = listener->nextPendingConnection()) {
        new PeerConnection(
            socket,
            [&context](WireLink link) {
                return std::make_unique<Session>(context, std::move(link));
            },
            owner);
    }
}

} // namespace

void SandboxServer::acceptBncs() {
    acceptAll<BncsSession>(m_bncs, m_context, this);
}

void SandboxServer::acceptBnls() {
    acceptAll<BnlsSession>(m_bnls, m_context, this);
}

} // namespace sandbox
