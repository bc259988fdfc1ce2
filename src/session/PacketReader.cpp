#include "session/PacketReader.h"

#include "platform/Cp1252.h"
#include "platform/RecentTexts.h"

#include <limits>

void PacketReader::ClearBuffer() {
    m_buffer.clear();
    m_cursor = 0;
}

void PacketReader::HandleBuffer(const QByteArray& data) {
    m_buffer = data;
    m_cursor = 1;
}

QByteArray PacketReader::ReadRemains() const {
    if (m_cursor < 1)
        return {};
    return m_buffer.mid(m_cursor - 1);
}

void PacketReader::Skip(int bytes) {
    advance(bytes);
}

int PacketReader::startOf(qint16 fromPos) const {
    const int pos = fromPos >= 1 ? fromPos : m_cursor;
    if (pos < 1)
        throw PacketReadError("read at cursor 0");
    return pos - 1;
}

void PacketReader::advance(int bytes) {
    const int next = int(m_cursor) + bytes;
    if (next > std::numeric_limits<qint16>::max() || next < std::numeric_limits<qint16>::min())
        throw PacketReadError("frame cursor overflow");
    m_cursor = qint16(next);
}

quint32 PacketReader::readLittleEndian(int width, qint16 fromPos) {
    const int start = startOf(fromPos);
    if (start >= m_buffer.size())
        throw PacketReadError("read beyond the end of the frame");
    // A value cut short by the end of the frame is read as far as it goes.
    quint32 value = 0;
    for (int i = 0; i < width && start + i < m_buffer.size(); ++i)
        value |= quint32(quint8(m_buffer[start + i])) << (8 * i);
    if (fromPos < 1)
        advance(width);
    return value;
}

quint8 PacketReader::ReadBYTE(qint16 fromPos) {
    return quint8(readLittleEndian(1, fromPos));
}

quint16 PacketReader::ReadWORD(qint16 fromPos) {
    return quint16(readLittleEndian(2, fromPos));
}

quint32 PacketReader::ReadDWORD(qint16 fromPos) {
    return readLittleEndian(4, fromPos);
}

QByteArrayView PacketReader::stringAt(qint16 fromPos) {
    const int start = startOf(fromPos);
    const qsizetype nul = start < m_buffer.size() ? m_buffer.indexOf('\0', start) : -1;
    if (nul < 0)
        return {};
    const QByteArrayView text = QByteArrayView(m_buffer).sliced(start, nul - start);
    if (fromPos < 1)
        advance(int(text.size()) + 1);
    return text;
}

QByteArray PacketReader::ReadSTRINGBytes(qint16 fromPos) {
    return stringAt(fromPos).toByteArray();
}

// Decoded from the frame in place: names and texts are most of what a
// channel sends.
QString PacketReader::ReadSTRING(qint16 fromPos) {
    return cp1252::decode(stringAt(fromPos));
}

QString PacketReader::ReadSharedSTRING() {
    return RecentTexts::decode(stringAt(0));
}

QByteArray PacketReader::ReadVOID(int length, qint16 fromPos) {
    const int start = startOf(fromPos);
    QByteArray data = m_buffer.mid(start, std::max(0, length));
    if (fromPos < 1)
        advance(length);
    return data;
}
