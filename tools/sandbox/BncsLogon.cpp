#include "sandbox/BncsLogon.h"

#include "logon/OldLogonServer.h"
#include "platform/Cp1252.h"
#include "sandbox/Products.h"
#include "sandbox/SandboxContext.h"
#include "session/PacketWriter.h"

#include <QRandomGenerator>
#include <algorithm>

namespace sandbox {
namespace {

// Results of 0x51.
constexpr quint32 kVersionOld = 0x100;
constexpr quint32 kVersionInvalid = 0x101;
constexpr quint32 kVersionNewer = 0x102;
constexpr quint32 kKeyInvalid = 0x200;
constexpr quint32 kKeyInUse = 0x201;
constexpr quint32 kKeyWrongProduct = 0x203;
constexpr quint32 kSecondKey = 0x010;

// How each system refuses a new account's name.
constexpr BncsLogon::Refusals kOldSystemRefusals{6, 2, 3, 4};
constexpr BncsLogon::Refusals kNewSystemRefusals{7, 8, 9, 4};

// The archive's time in 0x50: a FILETIME, 100 ns steps since 1601; here 2004-01-01.
constexpr quint64 kArchiveTime = (1072915200ull + 11644473600ull) * 10000000ull;

QByteArray readExact(PacketReader& r, int length) {
    QByteArray bytes = r.ReadVOID(length);
    if (bytes.size() != length) throw PacketReadError("field cut short");
    return bytes;
}

template <std::size_t N> std::array<std::uint8_t, N> readArray(PacketReader& r) {
    const QByteArray bytes = readExact(r, int(N));
    std::array<std::uint8_t, N> out{};
    std::copy(bytes.begin(), bytes.end(), out.begin());
    return out;
}

template <typename Bytes> QByteArray raw(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
}

std::string ansi(const QString& text) {
    return cp1252::encode(text).toStdString();
}

int keyLengthOf(logon::ProductKey::Family family) {
    switch (family) {
    case logon::ProductKey::Family::StarCraft:
        return 13;
    case logon::ProductKey::Family::Diablo2:
        return 16;
    case logon::ProductKey::Family::WarCraft3:
        break;
    }
    return 26;
}

} // namespace

BncsLogon::BncsLogon(SandboxContext& context, Reply reply)
    : m_context(context), m_reply(std::move(reply)) {}

BncsLogon::~BncsLogon() {
    for (const QString& key : std::as_const(m_heldKeys))
        m_context.keysInUse.remove(key);
}

bool BncsLogon::authInfo(PacketReader& r) {
    if (m_step != Step::Start) return false;
    r.ReadDWORD(); // protocol id
    r.ReadDWORD(); // platform
    QByteArray code = readExact(r, 4);
    std::reverse(code.begin(), code.end());
    m_product = findProduct(QString::fromLatin1(code));
    if (!m_product) return false;
    m_versionByte = r.ReadDWORD();
    m_serverToken = QRandomGenerator::global()->generate();
    m_challenge = m_context.oracle.challenge();

    PacketWriter w;
    w.WriteDWORD(m_product->newLogon ? 2 : 0);
    w.WriteDWORD(m_serverToken);
    w.WriteDWORD(QRandomGenerator::global()->generate()); // UDP value
    w.WriteDWORD(quint32(kArchiveTime));
    w.WriteDWORD(quint32(kArchiveTime >> 32));
    w.WriteSTRING(m_challenge.archive);
    w.WriteSTRING(m_challenge.formula);
    m_reply(0x50, w.payload());
    m_step = Step::Identified;
    return true;
}

bool BncsLogon::authCheck(PacketReader& r) {
    if (m_step != Step::Identified) return false;
    const quint32 clientToken = r.ReadDWORD();
    const quint32 version = r.ReadDWORD();
    const quint32 checksum = r.ReadDWORD();
    QString extra;
    quint32 result = checkVersion(version, checksum);
    if (result == kVersionOld) extra = m_challenge.archive;
    if (result == 0) result = checkKeys(r, clientToken, extra);

    PacketWriter w;
    w.WriteDWORD(result);
    w.WriteSTRING(extra);
    m_reply(0x51, w.payload());
    if (result == 0) m_step = Step::Authorized;
    return true;
}

quint32 BncsLogon::checkVersion(quint32 version, quint32 checksum) {
    if (m_context.options.versionResult) return *m_context.options.versionResult;
    // Servers in use know the byte of the client version they serve, and
    // nothing older.
    if (m_context.options.currentVerbyte && m_versionByte != m_product->versionByte())
        return kVersionInvalid;
    const auto expected = m_context.oracle.answer(m_challenge.formula, m_challenge.archiveNumber);
    if (!expected) return kVersionInvalid;
    if (version < expected->version) return kVersionOld;
    if (version > expected->version) return kVersionNewer;
    return checksum == expected->checksum ? 0 : kVersionInvalid;
}

quint32 BncsLogon::checkKeys(PacketReader& r, quint32 clientToken, QString& owner) {
    const quint32 count = r.ReadDWORD();
    r.ReadDWORD(); // spawn
    if (count != quint32(m_product->keyCount)) return kKeyInvalid;
    QStringList ids;
    quint32 result = 0;
    for (quint32 i = 0; i < count; ++i) {
        const quint32 base = i == 0 ? 0 : kSecondKey;
        const quint32 length = r.ReadDWORD();
        const quint32 product = r.ReadDWORD();
        const quint32 val1 = r.ReadDWORD();
        r.ReadDWORD(); // reserved
        const auto hash = readArray<20>(r);
        if (result != 0) continue;
        const logon::ProductKey* key =
            m_context.keys.match(product, val1, hash, clientToken, m_serverToken);
        if (!key)
            result = kKeyInvalid + base;
        else if (int(length) != m_product->keyLength ||
                 keyLengthOf(key->family()) != m_product->keyLength)
            result = kKeyWrongProduct + base;
        else
            ids.append(QStringLiteral("%1:%2").arg(product).arg(val1));
    }
    r.ReadSTRING(); // executable information
    const QString keyOwner = r.ReadSTRING();
    if (result != 0 || !m_context.options.exclusiveKeys) return result;
    for (int i = 0; i < ids.size(); ++i) {
        const auto held = m_context.keysInUse.constFind(ids[i]);
        if (held != m_context.keysInUse.cend()) {
            owner = *held;
            return kKeyInUse + (i == 0 ? 0 : kSecondKey);
        }
    }
    for (const QString& id : ids)
        m_context.keysInUse.insert(id, keyOwner);
    m_heldKeys = ids;
    return 0;
}

bool BncsLogon::oldSystemAllowed() const {
    return m_step == Step::Authorized && !m_product->newLogon;
}

bool BncsLogon::newSystemAllowed() const {
    return m_step == Step::Authorized && m_product->newLogon;
}

void BncsLogon::loggedOn(const QString& account) {
    m_account = account;
    m_step = Step::LoggedOn;
}

bool BncsLogon::oldLogon(PacketReader& r) {
    if (!oldSystemAllowed()) return false;
    const quint32 clientToken = r.ReadDWORD();
    r.ReadDWORD(); // the server token as the client remembers it
    const auto proof = readArray<20>(r);
    const AccountRecord* account = m_context.store.find(r.ReadSTRING());

    quint32 status = 0;
    QString text;
    if (!account) {
        status = 1;
    } else if (!account->passwordHash) {
        status = 6;
        text = QStringLiteral("This account logs on with the new logon system.");
    } else if (!logon::checkOldLogonProof(*account->passwordHash, clientToken, m_serverToken,
                                          proof)) {
        status = 2;
    }
    PacketWriter w;
    w.WriteDWORD(status);
    w.WriteSTRING(text);
    m_reply(0x3A, w.payload());
    if (status == 0) {
        loggedOn(account->name);
        if (account->email.isEmpty()) m_reply(0x59, {});
    }
    return true;
}

quint32 BncsLogon::create(const AccountRecord& account, const Refusals& refusals) {
    switch (AccountStore::checkName(account.name)) {
    case AccountStore::NameCheck::TooShort:
        return refusals.tooShort;
    case AccountStore::NameCheck::TooLong:
    case AccountStore::NameCheck::InvalidCharacters:
        return refusals.invalid;
    case AccountStore::NameCheck::BannedWord:
        return refusals.banned;
    case AccountStore::NameCheck::Ok:
        break;
    }
    return m_context.store.create(account) ? 0 : refusals.exists;
}

bool BncsLogon::oldCreate(PacketReader& r) {
    if (!oldSystemAllowed()) return false;
    const auto hash = readArray<20>(r);
    const QString name = r.ReadSTRING();
    const quint32 status = create({name, hash, std::nullopt, QString()}, kOldSystemRefusals);
    PacketWriter w;
    w.WriteDWORD(status);
    w.WriteSTRING(QString());
    m_reply(0x3D, w.payload());
    return true;
}

bool BncsLogon::oldChangePassword(PacketReader& r) {
    if (!oldSystemAllowed()) return false;
    const quint32 clientToken = r.ReadDWORD();
    r.ReadDWORD(); // server token
    const auto oldProof = readArray<20>(r);
    const auto newHash = readArray<20>(r);
    const AccountRecord* account = m_context.store.find(r.ReadSTRING());
    const bool accepted =
        account && account->passwordHash &&
        logon::checkOldLogonProof(*account->passwordHash, clientToken, m_serverToken, oldProof);
    if (accepted) m_context.store.setPasswordHash(account->name, newHash);
    PacketWriter w;
    w.WriteDWORD(accepted ? 1 : 0);
    m_reply(0x31, w.payload());
    return true;
}

bool BncsLogon::newCreate(PacketReader& r) {
    if (!newSystemAllowed()) return false;
    logon::NlsAccount secrets;
    secrets.salt = readArray<32>(r);
    secrets.verifier = readArray<32>(r);
    const QString name = r.ReadSTRING();
    const quint32 status = create({name, std::nullopt, secrets, QString()}, kNewSystemRefusals);
    PacketWriter w;
    w.WriteDWORD(status);
    m_reply(0x52, w.payload());
    return true;
}

// 0x53 and 0x55 alike: the client's key and account in, the salt and the server's key out,
// for a logon or for a password change.
bool BncsLogon::challenge(quint8 id, PacketReader& r,
                          std::optional<logon::NlsServerSession>& session) {
    if (!newSystemAllowed()) return false;
    const auto clientKey = readArray<32>(r);
    const QString name = r.ReadSTRING();
    const AccountRecord* account = m_context.store.find(name);
    session.reset();
    quint32 status = 0;
    if (!account)
        status = 1;
    else if (!account->nls)
        status = 5; // an old-system account must be upgraded first
    else if (!(session = logon::NlsServerSession::start(ansi(name), *account->nls, clientKey)))
        status = 6;
    PacketWriter w;
    w.WriteDWORD(status);
    if (session) {
        m_proofAccount = account->name;
        w.WriteVOID(raw(session->salt()));
        w.WriteVOID(raw(session->serverKey()));
    }
    m_reply(id, w.payload());
    return true;
}

// 0x54 and 0x56 alike: a status, then the server's proof or nothing.
void BncsLogon::proofReply(quint8 id, quint32 status, const logon::Digest* serverProof,
                           bool withText) {
    PacketWriter w;
    w.WriteDWORD(status);
    w.WriteVOID(serverProof ? raw(*serverProof) : QByteArray(20, '\0'));
    if (withText) w.WriteSTRING(QString());
    m_reply(id, w.payload());
}

bool BncsLogon::newLogon(PacketReader& r) {
    return challenge(0x53, r, m_logonProof);
}

bool BncsLogon::newProof(PacketReader& r) {
    if (!newSystemAllowed() || !m_logonProof) return false;
    const auto proof = readArray<20>(r);
    const AccountRecord* account = m_context.store.find(m_proofAccount);
    const auto session = std::move(m_logonProof);
    m_logonProof.reset();
    if (!account || !session->checkClientProof(proof)) {
        proofReply(0x54, 2, nullptr, true);
        return true;
    }
    const logon::Digest serverProof = session->serverProof();
    proofReply(0x54, account->email.isEmpty() ? 0x0E : 0, &serverProof, true);
    loggedOn(account->name);
    return true;
}

bool BncsLogon::newChangePassword(PacketReader& r) {
    return challenge(0x55, r, m_changeProof);
}

bool BncsLogon::newChangeProof(PacketReader& r) {
    if (!newSystemAllowed() || !m_changeProof) return false;
    const auto proof = readArray<84>(r);
    const auto session = std::move(m_changeProof);
    m_changeProof.reset();
    const auto changed = session->acceptPasswordChange(proof);
    if (!changed) {
        proofReply(0x56, 2, nullptr, false);
        return true;
    }
    m_context.store.setNls(m_proofAccount, *changed);
    const logon::Digest serverProof = session->serverProof();
    proofReply(0x56, 0, &serverProof, false);
    return true;
}

bool BncsLogon::registerEmail(PacketReader& r) {
    if (m_step < Step::Authorized) return false;
    const QString email = r.ReadSTRING();
    const AccountRecord* account =
        m_step == Step::LoggedOn ? m_context.store.find(m_account) : nullptr;
    // An address is registered once; changing it takes the old one (0x5B).
    if (account && account->email.isEmpty() && !email.isEmpty())
        m_context.store.setEmail(account->name, email);
    return true;
}

bool BncsLogon::changeEmail(PacketReader& r) {
    if (m_step < Step::Authorized) return false;
    const AccountRecord* account = m_context.store.find(r.ReadSTRING());
    const QString oldEmail = r.ReadSTRING();
    const QString newEmail = r.ReadSTRING();
    if (account && !newEmail.isEmpty() &&
        account->email.compare(oldEmail, Qt::CaseInsensitive) == 0)
        m_context.store.setEmail(account->name, newEmail);
    return true;
}

bool BncsLogon::forgotPassword(PacketReader& r) {
    // The sandbox sends no mail; the request is read and let go.
    r.ReadSTRING();
    r.ReadSTRING();
    return m_step >= Step::Authorized;
}

} // namespace sandbox
