#pragma once

#include <QByteArray>
#include <QString>

#include <stdexcept>

// A read that the frame cannot satisfy. The dispatch catches it and drops the
// frame; nothing a server sends may end the process.
class PacketReadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One received frame and a 1-based cursor over it. Every read takes an
// optional absolute position: below 1 it reads at the cursor and moves it, from
// 1 on it reads there and leaves the cursor alone. Cursor and positions are
// 16-bit like the frame walker the protocol code was written for, so a frame
// is walkable up to byte 32767.
class PacketReader {
public:
    void ClearBuffer();
    void HandleBuffer(const QByteArray& data);
    int DataLength() const { return int(m_buffer.size()); }
    const QByteArray& ReadBuffer() const { return m_buffer; }
    QByteArray ReadRemains() const;
    qint16 GetPosition() const { return m_cursor; }
    void Skip(int bytes);

    quint8 ReadBYTE(qint16 fromPos = 0);
    quint16 ReadWORD(qint16 fromPos = 0);
    quint32 ReadDWORD(qint16 fromPos = 0);
    // Text up to the next NUL, Windows-1252; empty, cursor kept, if none follows.
    QString ReadSTRING(qint16 fromPos = 0);
    // The same, for a name or statstring that many slots hear again: it
    // shares the text with the last read of the same bytes.
    QString ReadSharedSTRING();
    // The same as raw bytes.
    QByteArray ReadSTRINGBytes(qint16 fromPos = 0);
    // `length` bytes or what is left; at the cursor it moves by `length` anyway.
    QByteArray ReadVOID(int length, qint16 fromPos = 0);

private:
    // 0-based start of a read and whether it is at the cursor.
    int startOf(qint16 fromPos) const;
    void advance(int bytes);
    QByteArrayView stringAt(qint16 fromPos);
    quint32 readLittleEndian(int width, qint16 fromPos);

    QByteArray m_buffer;
    qint16 m_cursor = 0;
};
