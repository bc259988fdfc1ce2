#pragma once

#include "sandbox/BncsLogon.h"
#include "sandbox/ChatUser.h"
#include "sandbox/FloodGuard.h"
#include "sandbox/WireSession.h"

namespace sandbox {

class SandboxContext;

// The server side of one Battle.net chat connection: the protocol byte, then frames. The
// logon is BncsLogon's; this class keeps the ping, enters chat and carries the client's chat
// into the hub, and is the client's presence there.
class BncsSession : public WireSession, public ChatUser {
public:
    BncsSession(SandboxContext& context, WireLink link);
    ~BncsSession() override;

    const BncsLogon& logon() const { return m_logon; }
    bool inChat() const { return m_inChat; }

    void deliver(const ChatEvent& event) override;
    void dropSession() override;
    // A frame the server sends of its own accord (scripted keep-alives, notices).
    void sendRaw(quint8 id, const QByteArray& payload) { sendFrame(id, payload); }

protected:
    Cut cut(const QByteArray& data, qsizetype at, int& length, quint8& id) const override;
    QByteArray frame(quint8 id, const QByteArray& payload) const override;
    int headerSize() const override { return 4; }
    int takePreamble(const QByteArray& data, qsizetype at) override;
    void handle(quint8 id, PacketReader& reader) override;
    void ending() override;

private:
    // False for a frame the client may not send now.
    bool dispatch(quint8 id, PacketReader& r);
    void sendPing();
    void answeredPing();
    bool enterChat(PacketReader& r);
    bool joinChannel(PacketReader& r);
    bool chatLine(PacketReader& r);
    void sendChannelList();
    void sendNews();
    void sendProfile(PacketReader& r);
    void writeProfile(PacketReader& r);

    SandboxContext& m_context;
    BncsLogon m_logon;
    FloodGuard m_flood;
    bool m_inChat = false;
    quint32 m_pingCookie = 0;
    qint64 m_pingSentUs = -1; // when the server's ping went out and is still unanswered
    bool m_pingMeasured = false;
};

} // namespace sandbox
