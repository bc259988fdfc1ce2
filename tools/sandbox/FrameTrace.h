#pragma once

#include <QElapsedTimer>
#include <QFile>

namespace sandbox {

// One line per frame in or out, for reading the order of a logon off the wire:
//   trace <ms since start> <bncs|bnls> <connection> <in|out> <0xID|proto> <hex of the frame>
class FrameTrace {
public:
    // Empty path: standard error.
    explicit FrameTrace(const QString& path);

    bool isOpen() const { return m_out.isOpen(); }
    void frame(const char* protocol, int connection, bool incoming, int id,
               const QByteArray& bytes);
    // Lines about a connection that are not frames (opened, closed, refused and why).
    void note(const char* protocol, int connection, const QString& text);

private:
    void write(const QByteArray& line);

    QFile m_out;
    QElapsedTimer m_clock;
};

} // namespace sandbox
