#pragma once

#include "sandbox/WireSession.h"

namespace sandbox {

class SandboxContext;

// The server side of one BNLS connection: version checks for clients without game files
// (0x09 by archive number, 0x1A by archive name) and the current version byte (0x10).
class BnlsSession : public WireSession {
public:
    BnlsSession(SandboxContext& context, WireLink link);

protected:
    Cut cut(const QByteArray& data, qsizetype at, int& length, quint8& id) const override;
    QByteArray frame(quint8 id, const QByteArray& payload) const override;
    int headerSize() const override { return 3; }
    void handle(quint8 id, PacketReader& reader) override;

private:
    void versionCheck(quint8 id, quint32 productId, int archiveNumber, const QString& formula,
                      const QByteArray& trailer);

    SandboxContext& m_context;
};

} // namespace sandbox
