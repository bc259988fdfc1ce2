#include "sandbox/BncsSession.h"

#include "platform/Cp1252.h"
#include "sandbox/ChatCommands.h"
#include "sandbox/Products.h"
#include "sandbox/SandboxContext.h"
#include "session/PacketWriter.h"

#include <QDateTime>
#include <QRandomGenerator>

namespace sandbox {
namespace {

constexpr quint8 kGameProtocol = 0x01;
constexpr quint32 kNoPing = 0xFFFFFFFF;
// Account number and registration authority of a chat event: the server's placeholder.
constexpr quint32 kPlaceholder = 0xBAADF00D;
// A profile request asks for at most this many values.
constexpr quint32 kLargestProfileRequest = 1024;

} // namespace

BncsSession::BncsSession(SandboxContext& context, WireLink link)
    : WireSession(context.trace.get(), "bncs", context.nextConnectionId(), std::move(link)),
      m_context(context),
      m_logon(context, [this](quint8 id, const QByteArray& payload) { sendFrame(id, payload); }),
      m_flood(context.options.flood) {
    ping = kNoPing;
}

BncsSession::~BncsSession() {
    endOnce();
}

void BncsSession::ending() {
    m_context.hub.exit(*this);
    m_inChat = false;
}

WireSession::Cut BncsSession::cut(const QByteArray& data, qsizetype at, int& length,
                                  quint8& id) const {
    if (data.size() - at < 4) return Cut::Wait;
    if (quint8(data[at]) != 0xFF) return Cut::Broken;
    length = quint8(data[at + 2]) | quint8(data[at + 3]) << 8;
    if (length < 4) return Cut::Broken;
    if (data.size() - at < length) return Cut::Wait;
    id = quint8(data[at + 1]);
    return Cut::Frame;
}

QByteArray BncsSession::frame(quint8 id, const QByteArray& payload) const {
    return PacketWriter::frameBNCS(id, payload);
}

int BncsSession::takePreamble(const QByteArray& data, qsizetype at) {
    if (data.size() <= at) return 0;
    if (trace()) trace()->frame("bncs", connectionId(), true, -1, data.mid(at, 1));
    return quint8(data[at]) == kGameProtocol ? 1 : -1;
}

void BncsSession::handle(quint8 id, PacketReader& reader) {
    if (!dispatch(id, reader))
        close(QStringLiteral("0x%1 out of turn").arg(id, 2, 16, QLatin1Char('0')));
}

bool BncsSession::dispatch(quint8 id, PacketReader& r) {
    using Step = BncsLogon::Step;
    switch (id) {
    case 0x00: // keep-alive: nothing to answer, unless told to echo it as some servers do
        if (m_context.options.echoKeepAlive) sendFrame(0x00, {});
        return true;
    case 0x25:
        answeredPing();
        return true;
    case 0x50:
        return m_logon.authInfo(r);
    case 0x51:
        if (m_logon.step() == Step::Identified) sendPing();
        return m_logon.authCheck(r);
    case 0x14: // the client can't do UDP: everyone sees the plug
        if (m_logon.step() < Step::Authorized) return false;
        flags |= userflag::NoUdp;
        return true;
    case 0x3A:
        return m_logon.oldLogon(r);
    case 0x3D:
        return m_logon.oldCreate(r);
    case 0x31:
        return m_logon.oldChangePassword(r);
    case 0x52:
        return m_logon.newCreate(r);
    case 0x53:
        return m_logon.newLogon(r);
    case 0x54:
        return m_logon.newProof(r);
    case 0x55:
        return m_logon.newChangePassword(r);
    case 0x56:
        return m_logon.newChangeProof(r);
    case 0x59:
        return m_logon.registerEmail(r);
    case 0x5A:
        return m_logon.forgotPassword(r);
    case 0x5B:
        return m_logon.changeEmail(r);
    case 0x0A:
        return enterChat(r);
    case 0x0B:
        if (m_inChat) sendChannelList();
        return m_inChat;
    case 0x0C:
        return joinChannel(r);
    case 0x10: // leave the channel, stay in chat
        if (m_inChat) m_context.hub.leaveChannel(*this);
        return m_inChat;
    case 0x0E:
        return chatLine(r);
    case 0x46:
        if (m_logon.step() == Step::LoggedOn) sendNews();
        return m_logon.step() == Step::LoggedOn;
    case 0x65:
        if (m_inChat) m_context.friends.sendList(*this);
        return m_inChat;
    case 0x26:
        if (m_logon.step() != Step::LoggedOn) return false;
        sendProfile(r);
        return true;
    case 0x27:
        if (!m_inChat) return false;
        writeProfile(r);
        return true;
    default:
        if (id >= 0x70 && id <= 0x7D) return m_inChat && m_context.clans.handle(*this, id, r);
        note(QStringLiteral("ignored 0x%1").arg(id, 2, 16, QLatin1Char('0')));
        return true;
    }
}

// The server measures a client's ping once, from its 0x25 at the version check to the
// client's answer. A 0x25 the client sends before being asked counts as 0 ms unless an
// answer follows; a client that never sends one shows -1.
void BncsSession::sendPing() {
    m_pingCookie = QRandomGenerator::global()->generate();
    m_pingSentUs = m_context.nowUs();
    PacketWriter w;
    w.WriteDWORD(m_pingCookie);
    sendFrame(0x25, w.payload());
}

void BncsSession::answeredPing() {
    if (m_pingSentUs >= 0) {
        const qint64 elapsedUs = m_context.nowUs() - m_pingSentUs;
        ping = quint32(std::max<qint64>(1, (elapsedUs + 999) / 1000));
        m_pingSentUs = -1;
        m_pingMeasured = true;
    } else if (!m_pingMeasured) {
        ping = 0;
    }
}

bool BncsSession::enterChat(PacketReader& r) {
    if (m_logon.step() != BncsLogon::Step::LoggedOn || m_inChat) return false;
    r.ReadSTRING(); // the name the client asks for: the server names it after the account
    r.ReadSTRING(); // its statstring: the server keeps its own
    product = m_logon.product();
    statstring = cp1252::decode(defaultStatstring(*product));
    m_context.hub.enter(*this, m_logon.account());
    m_inChat = true;
    PacketWriter w;
    w.WriteSTRING(name());
    w.WriteSTRING(statstring);
    w.WriteSTRING(account);
    sendFrame(0x0A, w.payload());
    m_context.clans.entered(*this);
    return true;
}

bool BncsSession::joinChannel(PacketReader& r) {
    if (!m_inChat) return false;
    const quint32 how = r.ReadDWORD();
    const QString channel = r.ReadSTRING();
    ChatHub::JoinMode mode = ChatHub::JoinMode::NoCreate;
    if (how == 1 || how == 5) // first join; 5 is Diablo II's
        mode = ChatHub::JoinMode::First;
    else if (how == 2)
        mode = ChatHub::JoinMode::Forced;
    m_context.hub.join(*this, channel, mode);
    return true;
}

bool BncsSession::chatLine(PacketReader& r) {
    if (!m_inChat) return false;
    const QByteArray text = r.ReadSTRINGBytes();
    if (!m_flood.admit(m_context.nowMs(), int(text.size()))) {
        sendFrame(0x13, {});
        close(QStringLiteral("flooding"));
        return true;
    }
    const QString line = cp1252::decode(text);
    if (!m_context.friends.command(*this, line)) chatcommands::run(m_context.hub, *this, line);
    return true;
}

void BncsSession::sendChannelList() {
    PacketWriter w;
    for (const QString& channel : m_context.hub.channelList(product))
        w.WriteSTRING(channel);
    w.WriteSTRING(QString());
    sendFrame(0x0B, w.payload());
}

void BncsSession::sendNews() {
    const quint32 now = quint32(QDateTime::currentSecsSinceEpoch());
    PacketWriter w;
    w.WriteBYTE(1);
    w.WriteDWORD(now); // last logon
    w.WriteDWORD(now); // oldest news
    w.WriteDWORD(now); // newest news
    w.WriteDWORD(now);
    w.WriteSTRING(QStringLiteral(
        "Welcome to Battle.net! This is the Corvantide sandbox, a local server for tests "
        "and demos."));
    sendFrame(0x46, w.payload());
}

void BncsSession::sendProfile(PacketReader& r) {
    const quint32 accounts = r.ReadDWORD();
    const quint32 keys = r.ReadDWORD();
    const quint32 request = r.ReadDWORD();
    if (accounts == 0 || keys == 0 || accounts > kLargestProfileRequest ||
        keys > kLargestProfileRequest / accounts)
        return close(QStringLiteral("profile request of %1 x %2").arg(accounts).arg(keys));
    QStringList names;
    for (quint32 i = 0; i < accounts; ++i)
        names.append(r.ReadSTRING());
    QStringList wanted;
    for (quint32 i = 0; i < keys; ++i)
        wanted.append(r.ReadSTRING());
    PacketWriter w;
    w.WriteDWORD(accounts);
    w.WriteDWORD(keys);
    w.WriteDWORD(request);
    for (const QString& n : std::as_const(names))
        for (const QString& k : std::as_const(wanted))
            w.WriteSTRING(m_context.profiles.value(n, k));
    sendFrame(0x26, w.payload());
}

// A client writes its own account's profile values, and only those; there is no answer.
void BncsSession::writeProfile(PacketReader& r) {
    const quint32 accounts = r.ReadDWORD();
    const quint32 keys = r.ReadDWORD();
    if (accounts != 1 || keys == 0 || keys > kLargestProfileRequest)
        return close(QStringLiteral("profile write of %1 x %2").arg(accounts).arg(keys));
    const QString owner = r.ReadSTRING();
    QStringList wanted;
    for (quint32 i = 0; i < keys; ++i)
        wanted.append(r.ReadSTRING());
    for (const QString& k : std::as_const(wanted)) {
        const QString value = r.ReadSTRING();
        if (owner.compare(account, Qt::CaseInsensitive) == 0 && ProfileValues::writable(k))
            m_context.profiles.set(owner, k, value);
    }
}

void BncsSession::deliver(const ChatEvent& event) {
    PacketWriter w;
    w.WriteDWORD(event.id);
    w.WriteDWORD(event.flags);
    w.WriteDWORD(event.ping);
    w.WriteDWORD(0); // IP address
    w.WriteDWORD(kPlaceholder);
    w.WriteDWORD(kPlaceholder);
    w.WriteSTRING(event.name);
    w.WriteSTRING(event.text);
    sendFrame(0x0F, w.payload());
}

void BncsSession::dropSession() {
    close(QStringLiteral("dropped by the server"));
}

} // namespace sandbox
