#include "SandboxHarness.h"

#include "logon/BncsUtil.h"
#include "logon/PasswordHash.h"
#include "logon/ProductKey.h"
#include "logon/VersionCheck.h"
#include "session/PacketWriter.h"

#include <QTest>
#include <gtest/gtest.h>
#include <map>

namespace sandboxtest {
namespace {

struct ProductFacts {
    quint32 bnlsId;
    QStringList keys;
    bool newLogon;
};

const ProductFacts& facts(const char* product) {
    static const std::map<QString, ProductFacts> table{
        {"STAR", {1, {kStarKey}, false}},
        {"SEXP", {2, {kStarKey}, false}},
        {"W2BN", {3, {kD2Key}, false}},
        {"D2DV", {4, {kD2Key}, false}},
        {"D2XP", {5, {kD2Key, kD2Key2}, false}},
        {"WAR3", {7, {kWar3Key}, true}},
        {"W3XP", {8, {kWar3Key, "7TGH6YHF7KTDNCJGEFTVDCGKCV"}, true}},
    };
    return table.at(QString::fromLatin1(product));
}

std::string bytes(const QString& text) {
    return text.toLatin1().toStdString();
}

QByteArray raw(const std::uint8_t* data, int size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace

PacketReader Frame::reader() const {
    PacketReader r;
    r.HandleBuffer(payload);
    return r;
}

Server::Server(sandbox::SandboxOptions options) {
    options.bncsPort = 0;
    options.bnlsPort = 0;
    QString error;
    m_context = sandbox::SandboxContext::create(options, error);
    if (!m_context) {
        ADD_FAILURE() << error.toStdString();
        m_context = std::make_unique<sandbox::SandboxContext>(sandbox::SandboxOptions{});
    }
    m_server = std::make_unique<sandbox::SandboxServer>(*m_context);
    EXPECT_TRUE(m_server->listen(error)) << error.toStdString();
}

Server::~Server() = default;

Client::Client(quint16 port, bool bnls) : m_bnls(bnls) {
    m_socket.connectToHost(QHostAddress::LocalHost, port);
    EXPECT_TRUE(
        waitFor([this] { return m_socket.state() == QAbstractSocket::ConnectedState; }, kWaitMs));
}

bool Client::waitFor(const std::function<bool()>& done, int timeoutMs) {
    return QTest::qWaitFor(
        [&] {
            take();
            return done();
        },
        timeoutMs);
}

void Client::take() {
    m_in.append(m_socket.readAll());
    const int header = m_bnls ? 3 : 4;
    while (m_in.size() >= header) {
        const int at = m_bnls ? 0 : 2;
        const int length = quint8(m_in[at]) | quint8(m_in[at + 1]) << 8;
        if (m_in.size() < length || length < header) return;
        m_frames.append({quint8(m_in[m_bnls ? 2 : 1]), m_in.mid(header, length - header)});
        m_in.remove(0, length);
    }
}

void Client::sendRaw(const QByteArray& bytes) {
    m_socket.write(bytes);
    m_socket.flush();
}

void Client::send(quint8 id, const QByteArray& payload) {
    sendRaw(m_bnls ? PacketWriter::frameBNLS(id, payload) : PacketWriter::frameBNCS(id, payload));
}

std::optional<Frame> Client::next(const std::function<bool(const Frame&)>& match, int timeoutMs) {
    const auto find = [&] { return std::find_if(m_frames.begin(), m_frames.end(), match); };
    if (!waitFor([&] { return find() != m_frames.end(); }, timeoutMs)) return std::nullopt;
    return m_frames.takeAt(find() - m_frames.begin());
}

std::optional<Frame> Client::next(quint8 id, int timeoutMs) {
    return next([id](const Frame& f) { return f.id == id; }, timeoutMs);
}

namespace {
Event parseEvent(const Frame& f) {
    PacketReader r = f.reader();
    Event e;
    e.id = r.ReadDWORD();
    e.flags = r.ReadDWORD();
    e.ping = r.ReadDWORD();
    r.Skip(12);
    e.name = r.ReadSTRING();
    e.text = r.ReadSTRING();
    return e;
}
} // namespace

std::optional<Event> Client::nextEvent(const std::function<bool(const Event&)>& match,
                                       int timeoutMs) {
    const auto frame =
        next([&](const Frame& f) { return f.id == 0x0F && match(parseEvent(f)); }, timeoutMs);
    return frame ? std::optional(parseEvent(*frame)) : std::nullopt;
}

std::optional<Event> Client::nextEvent(quint32 id, int timeoutMs) {
    return nextEvent([id](const Event& e) { return e.id == id; }, timeoutMs);
}

bool Client::noneOf(quint32 id) {
    sync();
    return std::none_of(m_frames.begin(), m_frames.end(),
                        [id](const Frame& f) { return f.id == 0x0F && parseEvent(f).id == id; });
}

bool Client::closed(int timeoutMs) {
    return waitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; },
                   timeoutMs);
}

quint32 Client::status(quint8 id, const QByteArray& payload) {
    send(id, payload);
    const auto reply = next(id);
    return reply ? reply->reader().ReadDWORD() : 0xFFFFFFFF;
}

void Client::say(const QString& text) {
    PacketWriter w;
    w.WriteSTRING(text);
    send(0x0E, w.payload());
}

void Client::sync() {
    say(QStringLiteral("/whoami"));
    EXPECT_TRUE(
        nextEvent([](const Event& e) { return e.id == 18 && e.text.startsWith("You are"); }));
}

Client::Challenge Client::identify(const char* product) {
    sendRaw(QByteArray(1, '\x01'));
    PacketWriter w;
    w.WriteDWORD(0);
    w.WriteDWORD(0x49583836);
    QByteArray code(product);
    std::reverse(code.begin(), code.end());
    w.WriteVOID(code);
    w.WriteDWORD(0xD1);
    for (int i = 0; i < 5; ++i)
        w.WriteDWORD(0);
    w.WriteSTRING(QStringLiteral("USA"));
    w.WriteSTRING(QStringLiteral("United States"));
    send(0x50, w.payload());
    const auto reply = next(0x50);
    EXPECT_TRUE(reply);
    if (!reply) return {};
    PacketReader r = reply->reader();
    challenge.logonType = r.ReadDWORD();
    challenge.serverToken = r.ReadDWORD();
    r.Skip(12);
    challenge.archive = r.ReadSTRING();
    challenge.formula = r.ReadSTRING();
    return challenge;
}

quint32 Client::authCheck(const QStringList& keys, quint32 version, quint32 checksum) {
    PacketWriter w;
    w.WriteDWORD(clientToken);
    w.WriteDWORD(version);
    w.WriteDWORD(checksum);
    w.WriteDWORD(quint32(keys.size()));
    w.WriteDWORD(0);
    for (const QString& key : keys) {
        const auto decoded = logon::ProductKey::decode(bytes(key));
        EXPECT_TRUE(decoded) << key.toStdString();
        if (!decoded) return 0xFFFFFFFF;
        const logon::Digest hash = decoded->hash(clientToken, challenge.serverToken);
        w.WriteDWORD(quint32(key.size()));
        w.WriteDWORD(decoded->product());
        w.WriteDWORD(decoded->val1());
        w.WriteDWORD(0);
        w.WriteVOID(raw(hash.data(), int(hash.size())));
    }
    w.WriteSTRING(QStringLiteral("Game.exe 01/01/04 00:00:00 1000"));
    w.WriteSTRING(QStringLiteral("tester"));
    return status(0x51, w.payload());
}

quint32 Client::oldLogon(const QString& account, const QString& password) {
    const logon::Digest proof =
        logon::doublePasswordHash(bytes(password.toLower()), clientToken, challenge.serverToken);
    PacketWriter w;
    w.WriteDWORD(clientToken);
    w.WriteDWORD(challenge.serverToken);
    w.WriteVOID(raw(proof.data(), 20));
    w.WriteSTRING(account);
    return status(0x3A, w.payload());
}

quint32 Client::oldCreate(const QString& account, const QString& password) {
    const logon::Digest hash = logon::passwordHash(bytes(password));
    PacketWriter w;
    w.WriteVOID(raw(hash.data(), 20));
    w.WriteSTRING(account);
    return status(0x3D, w.payload());
}

quint32 Client::newLogon(const QString& account, const QString& password, bool* proofHolds) {
    const logon::NlsHandle nls = logon::nls_init(bytes(account), bytes(password.toLower()));
    std::uint8_t key[32];
    logon::nls_get_A(nls, key);
    PacketWriter w;
    w.WriteVOID(raw(key, 32));
    w.WriteSTRING(account);
    send(0x53, w.payload());
    auto reply = next(0x53);
    quint32 status = reply ? reply->reader().ReadDWORD() : 0xFFFFFFFF;
    if (status == 0) {
        PacketReader r = reply->reader();
        r.Skip(4);
        const QByteArray salt = r.ReadVOID(32);
        const QByteArray serverKey = r.ReadVOID(32);
        std::uint8_t proof[20];
        logon::nls_get_M1(nls, proof, reinterpret_cast<const std::uint8_t*>(serverKey.data()),
                          reinterpret_cast<const std::uint8_t*>(salt.data()));
        send(0x54, raw(proof, 20));
        reply = next(0x54);
        PacketReader p = reply ? reply->reader() : PacketReader();
        status = reply ? p.ReadDWORD() : 0xFFFFFFFF;
        if (proofHolds && reply) {
            const QByteArray serverProof = p.ReadVOID(20);
            *proofHolds = logon::nls_check_M2(
                              nls, reinterpret_cast<const std::uint8_t*>(serverProof.data())) != 0;
        }
    }
    logon::nls_free(nls);
    return status;
}

quint32 Client::newCreate(const QString& account, const QString& password) {
    const logon::NlsHandle nls = logon::nls_init(bytes(account), bytes(password.toLower()));
    QByteArray buffer(account.size() + 65, '\0');
    logon::nls_account_create(nls, reinterpret_cast<std::uint8_t*>(buffer.data()),
                              size_t(buffer.size()));
    logon::nls_free(nls);
    return status(0x52, buffer);
}

QString Client::enterChat() {
    PacketWriter w;
    w.WriteSTRING(QStringLiteral("ignored"));
    w.WriteBYTE(0);
    send(0x0A, w.payload());
    const auto reply = next(0x0A);
    return reply ? reply->reader().ReadSTRING() : QString();
}

void Client::join(const QString& channel, quint32 how) {
    PacketWriter w;
    w.WriteDWORD(how);
    w.WriteSTRING(channel);
    send(0x0C, w.payload());
}

VersionAnswer askBnls(quint16 port, const char* product, const Client::Challenge& challenge) {
    Client bnls(port, true);
    PacketWriter w;
    w.WriteDWORD(facts(product).bnlsId);
    w.WriteDWORD(quint32(logon::archiveNumber(bytes(challenge.archive))));
    w.WriteSTRING(challenge.formula);
    bnls.send(0x09, w.payload());
    const auto reply = bnls.next(0x09);
    if (!reply) return {};
    PacketReader r = reply->reader();
    VersionAnswer a;
    a.success = r.ReadDWORD();
    a.version = r.ReadDWORD();
    a.checksum = r.ReadDWORD();
    return a;
}

QString logOn(quint16 bnlsPort, Client& client, const char* product, const QString& account,
              const QString& password) {
    const ProductFacts& f = facts(product);
    const auto answer = askBnls(bnlsPort, product, client.identify(product));
    if (client.authCheck(f.keys, answer.version, answer.checksum) != 0) return {};
    quint32 status = 0;
    if (f.newLogon) {
        status = client.newLogon(account, password);
        if (status == 1 && client.newCreate(account, password) == 0)
            status = client.newLogon(account, password);
        if (status == 0x0E) status = 0;
    } else {
        status = client.oldLogon(account, password);
        if (status == 1 && client.oldCreate(account, password) == 0)
            status = client.oldLogon(account, password);
    }
    return status == 0 ? client.enterChat() : QString();
}

} // namespace sandboxtest
