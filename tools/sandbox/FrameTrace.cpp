#include "sandbox/FrameTrace.h"

#include <cstdio>

namespace sandbox {

FrameTrace::FrameTrace(const QString& path) {
    m_clock.start();
    if (path.isEmpty()) {
        (void)m_out.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered);
    } else {
        m_out.setFileName(path);
        (void)m_out.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    }
}

void FrameTrace::frame(const char* protocol, int connection, bool incoming, int id,
                       const QByteArray& bytes) {
    const QByteArray idText =
        id < 0 ? QByteArray("proto") : "0x" + QByteArray::number(id, 16).rightJustified(2, '0');
    write("trace " + QByteArray::number(m_clock.elapsed()) + ' ' + protocol + ' ' +
          QByteArray::number(connection) + (incoming ? " in " : " out ") + idText + ' ' +
          bytes.toHex());
}

void FrameTrace::note(const char* protocol, int connection, const QString& text) {
    write("trace " + QByteArray::number(m_clock.elapsed()) + ' ' + protocol + ' ' +
          QByteArray::number(connection) + " note " + text.toUtf8());
}

void FrameTrace::write(const QByteArray& line) {
    if (m_out.isOpen()) m_out.write(line + '\n');
}

} // namespace sandbox
