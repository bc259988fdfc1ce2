#include "sandbox/WireSession.h"

#include "sandbox/FrameTrace.h"

namespace sandbox {

WireSession::WireSession(FrameTrace* trace, const char* protocol, int id, WireLink link)
    : m_trace(trace), m_protocol(protocol), m_id(id), m_link(std::move(link)) {}

WireSession::~WireSession() = default;

void WireSession::receive(const QByteArray& bytes) {
    if (m_closed) return;
    m_in.append(bytes);
    if (!m_preambleDone) {
        const int taken = takePreamble(m_in, m_head);
        if (taken < 0) return close(QStringLiteral("refused the protocol byte"));
        if (taken == 0 && m_in.size() == m_head) return;
        m_head += taken;
        m_preambleDone = true;
    }
    PacketReader reader;
    while (!m_closed) {
        int length = 0;
        quint8 id = 0;
        const Cut c = cut(m_in, m_head, length, id);
        if (c == Cut::Wait) break;
        if (c == Cut::Broken) return close(QStringLiteral("broken frame header"));
        const QByteArray whole = m_in.mid(m_head, length);
        m_head += length;
        if (m_trace) m_trace->frame(m_protocol, m_id, true, id, whole);
        reader.HandleBuffer(whole);
        reader.Skip(headerSize());
        try {
            handle(id, reader);
        } catch (const PacketReadError&) {
            close(QStringLiteral("frame 0x%1 too short for its fields").arg(id, 2, 16, QChar('0')));
        }
    }
    if (m_head > 0 && !m_closed) {
        m_in.remove(0, m_head);
        m_head = 0;
    }
}

void WireSession::close(const QString& why) {
    if (m_closed) return;
    m_closed = true;
    note(QStringLiteral("closed: ") + why);
    endOnce();
    m_in.clear();
    m_head = 0;
    if (m_link.close) m_link.close();
}

void WireSession::endOnce() {
    if (m_ended) return;
    m_ended = true;
    ending();
}

void WireSession::sendFrame(quint8 id, const QByteArray& payload) {
    if (m_closed) return;
    const QByteArray bytes = frame(id, payload);
    if (m_trace) m_trace->frame(m_protocol, m_id, false, id, bytes);
    if (m_link.send) m_link.send(bytes);
}

void WireSession::note(const QString& text) {
    if (m_trace) m_trace->note(m_protocol, m_id, text);
}

} // namespace sandbox
