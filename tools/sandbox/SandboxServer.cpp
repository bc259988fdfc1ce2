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

void SandboxServer::acceptBncs() {
    while (QTcpSocket* socket = m_bncs->nextPendingConnection()) {
        new PeerConnection(
            socket,
            [this](WireLink link) {
                return std::make_unique<BncsSession>(m_context, std::move(link));
            },
            this);
    }
}

void SandboxServer::acceptBnls() {
    while (QTcpSocket* socket = m_bnls->nextPendingConnection()) {
        new PeerConnection(
            socket,
            [this](WireLink link) {
                return std::make_unique<BnlsSession>(m_context, std::move(link));
            },
            this);
    }
}

} // namespace sandbox
