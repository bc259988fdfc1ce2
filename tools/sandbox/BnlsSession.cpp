#include "sandbox/BnlsSession.h"

#include "logon/VersionCheck.h"
#include "sandbox/Products.h"
#include "sandbox/SandboxContext.h"
#include "session/PacketWriter.h"

namespace sandbox {

BnlsSession::BnlsSession(SandboxContext& context, WireLink link)
    : WireSession(context.trace.get(), "bnls", context.nextConnectionId(), std::move(link)),
      m_context(context) {}

WireSession::Cut BnlsSession::cut(const QByteArray& data, qsizetype at, int& length,
                                  quint8& id) const {
    if (data.size() - at < 3) return Cut::Wait;
    length = quint8(data[at]) | quint8(data[at + 1]) << 8;
    if (length < 3) return Cut::Broken;
    if (data.size() - at < length) return Cut::Wait;
    id = quint8(data[at + 2]);
    return Cut::Frame;
}

QByteArray BnlsSession::frame(quint8 id, const QByteArray& payload) const {
    return PacketWriter::frameBNLS(id, payload);
}

void BnlsSession::handle(quint8 id, PacketReader& r) {
    switch (id) {
    case 0x09: {
        const quint32 product = r.ReadDWORD();
        const int archive = int(r.ReadDWORD());
        versionCheck(id, product, archive, r.ReadSTRING(), {});
        return;
    }
    case 0x1A: {
        const quint32 product = r.ReadDWORD();
        r.ReadDWORD(); // flags
        const quint32 cookie = r.ReadDWORD();
        r.ReadVOID(8); // archive time
        const QByteArray archive = r.ReadSTRINGBytes();
        const QString formula = r.ReadSTRING();
        PacketWriter trailer;
        trailer.WriteDWORD(cookie);
        const Product* p = findBnlsProduct(product);
        trailer.WriteDWORD(p ? p->versionByte() : 0);
        versionCheck(id, product,
                     logon::archiveNumber({archive.constData(), size_t(archive.size())}), formula,
                     trailer.payload());
        return;
    }
    case 0x10: {
        const quint32 product = r.ReadDWORD();
        const Product* p = findBnlsProduct(product);
        PacketWriter w;
        w.WriteDWORD(p ? product : 0);
        if (p) w.WriteDWORD(p->versionByte());
        sendFrame(0x10, w.payload());
        return;
    }
    default:
        note(QStringLiteral("ignored 0x%1").arg(id, 2, 16, QLatin1Char('0')));
    }
}

void BnlsSession::versionCheck(quint8 id, quint32 productId, int archiveNumber,
                               const QString& formula, const QByteArray& trailer) {
    std::optional<VersionOracle::Answer> answer;
    if (!m_context.options.bnlsFail && findBnlsProduct(productId))
        answer = m_context.oracle.answer(formula, archiveNumber);
    PacketWriter w;
    w.WriteDWORD(answer ? 1 : 0);
    w.WriteDWORD(answer ? answer->version : 0);
    w.WriteDWORD(answer ? answer->checksum : 0);
    w.WriteSTRING(answer ? answer->info : QByteArray());
    w.WriteVOID(trailer);
    sendFrame(id, w.payload());
}

} // namespace sandbox
