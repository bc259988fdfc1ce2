#pragma once

#include "sandbox/SandboxContext.h"
#include "sandbox/SandboxServer.h"
#include "session/PacketReader.h"

#include <QTcpSocket>
#include <functional>
#include <memory>
#include <optional>

// A server on free loopback ports, in this process, and clients that speak to it over real
// sockets. Every wait runs the event loop with a time limit.
namespace sandboxtest {

constexpr int kWaitMs = 5000;

// Keys the server knows: the first of each length.
inline const char* kStarKey = "7178075237576";
inline const char* kD2Key = "WF4G4B99KVMB2DTT";
inline const char* kD2Key2 = "8K4NNCFJPXKW7CNW";
inline const char* kWar3Key = "V9FBR8JC4RJWCGPCMGPT9J2CND";

struct Frame {
    quint8 id = 0;
    QByteArray payload;
    PacketReader reader() const;
};

struct Event {
    quint32 id = 0, flags = 0, ping = 0;
    QString name, text;
};

class Server {
public:
    explicit Server(sandbox::SandboxOptions options = {});
    ~Server();
    sandbox::SandboxContext& context() { return *m_context; }
    quint16 bncsPort() const { return m_server->bncsPort(); }
    quint16 bnlsPort() const { return m_server->bnlsPort(); }

private:
    std::unique_ptr<sandbox::SandboxContext> m_context;
    std::unique_ptr<sandbox::SandboxServer> m_server;
};

class Client {
public:
    Client(quint16 port, bool bnls = false);

    void sendRaw(const QByteArray& bytes);
    void send(quint8 id, const QByteArray& payload = {});
    // Sends the frame and reads the first field of its answer; 0xFFFFFFFF when none came.
    quint32 status(quint8 id, const QByteArray& payload);
    // The first frame of this id that has come or comes in time; others stay queued.
    std::optional<Frame> next(quint8 id, int timeoutMs = kWaitMs);
    std::optional<Frame> next(const std::function<bool(const Frame&)>& match,
                              int timeoutMs = kWaitMs);
    std::optional<Event> nextEvent(const std::function<bool(const Event&)>& match,
                                   int timeoutMs = kWaitMs);
    std::optional<Event> nextEvent(quint32 id, int timeoutMs = kWaitMs);
    // No event of this id has come by the time a /whoami has gone round.
    bool noneOf(quint32 id);
    bool closed(int timeoutMs = kWaitMs);
    // Everything the server did about earlier frames has arrived: a /whoami went round.
    void sync();
    void say(const QString& text);

    // The logon, step by step. identify() sends the protocol byte and 0x50.
    struct Challenge {
        quint32 logonType = 0, serverToken = 0;
        QString archive, formula;
    };
    Challenge identify(const char* product);
    // 0x51 with these keys and the version check's answer; the result code.
    quint32 authCheck(const QStringList& keys, quint32 version, quint32 checksum);
    quint32 oldLogon(const QString& account, const QString& password);
    quint32 oldCreate(const QString& account, const QString& password);
    quint32 newLogon(const QString& account, const QString& password, bool* proofHolds = nullptr);
    quint32 newCreate(const QString& account, const QString& password);
    // Enters chat; the name the server gave.
    QString enterChat();
    void join(const QString& channel, quint32 how = 2);

    quint32 clientToken = 0x1234ABCD;
    Challenge challenge;

private:
    bool waitFor(const std::function<bool()>& done, int timeoutMs);
    void take();

    QTcpSocket m_socket;
    bool m_bnls;
    QByteArray m_in;
    QList<Frame> m_frames;
};

// The version check's answer from the server's BNLS, as a client without game files gets it.
struct VersionAnswer {
    quint32 success = 0, version = 0, checksum = 0;
};
VersionAnswer askBnls(quint16 port, const char* product, const Client::Challenge& challenge);

// A whole logon into chat, by the system the product uses, creating the account when it is
// missing; the name the server gave, or empty.
QString logOn(quint16 bnlsPort, Client& client, const char* product, const QString& account,
              const QString& password);

} // namespace sandboxtest
