#pragma once

#include "session/PacketReader.h"

#include <QByteArray>
#include <QString>
#include <functional>

namespace sandbox {

class FrameTrace;

// Where a session's bytes go: the socket, or a test or fuzz harness.
struct WireLink {
    std::function<void(const QByteArray&)> send;
    // The server hangs up. Called once, possibly from inside receive().
    std::function<void()> close;
};

// The server side of one connection, without the socket: it cuts the bytes a client sends
// into frames and hands each to the protocol. A client that breaks the framing, or sends a
// frame its handler can't read, is disconnected; nothing it sends ends the server.
class WireSession {
public:
    WireSession(FrameTrace* trace, const char* protocol, int id, WireLink link);
    virtual ~WireSession();
    WireSession(const WireSession&) = delete;
    WireSession& operator=(const WireSession&) = delete;

    void receive(const QByteArray& bytes);
    bool isClosed() const { return m_closed; }
    int connectionId() const { return m_id; }
    // Hangs up; the reason goes to the trace.
    void close(const QString& why);

protected:
    enum class Cut { Frame, Wait, Broken };
    // Looks at the bytes at the head of the stream: a whole frame (its length and id), not
    // enough yet, or bytes that can't start a frame.
    virtual Cut cut(const QByteArray& data, qsizetype at, int& length, quint8& id) const = 0;
    virtual QByteArray frame(quint8 id, const QByteArray& payload) const = 0;
    virtual int headerSize() const = 0;
    // Bytes the stream begins with before any frame; returns how many were taken, -1 for a
    // refusal. BNCS has its protocol byte here.
    virtual int takePreamble(const QByteArray&, qsizetype) { return 0; }
    virtual void handle(quint8 id, PacketReader& reader) = 0;
    // The session ends, by either side.
    virtual void ending() {}

    void sendFrame(quint8 id, const QByteArray& payload);
    void note(const QString& text);
    // Runs ending() if it hasn't run; a subclass's destructor calls it, as the base's can't.
    void endOnce();
    FrameTrace* trace() const { return m_trace; }

private:
    FrameTrace* m_trace;
    const char* m_protocol;
    int m_id;
    WireLink m_link;
    QByteArray m_in;
    qsizetype m_head = 0;
    bool m_preambleDone = false;
    bool m_closed = false;
    bool m_ended = false;
};

} // namespace sandbox
