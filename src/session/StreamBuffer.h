#pragma once

#include <QByteArray>

// Bytes received on one socket and not yet cut into frames. Frames are taken
// from the head by moving an offset, so removing a frame costs nothing however
// much follows it; the consumed head is dropped now and then in one move.
class StreamBuffer {
public:
    void append(const QByteArray& bytes);
    void clear();
    int size() const { return int(m_data.size() - m_head); }
    bool isEmpty() const { return size() == 0; }
    // The byte at 0-based `offset` from the head.
    quint8 at(int offset) const { return quint8(m_data[m_head + offset]); }
    QByteArray peek(int length) const { return m_data.mid(m_head, length); }
    QByteArray bytes() const { return m_data.mid(m_head); }
    // Drops up to `length` bytes from the head.
    void consume(int length);

    // Set while a cutter walks this buffer, so that a data event that arrives
    // in the middle (a handler that lets events run) only appends.
    bool cutting = false;
    // The last frame cut had no marker byte; a second one in a row means the
    // stream is no longer on frame boundaries.
    bool afterStrayFrame = false;
    // Moves on each clear, so a cutter can tell that its frame was thrown
    // away under it (a slot emptied from inside a handler).
    quint32 generation() const { return m_generation; }

private:
    QByteArray m_data;
    qsizetype m_head = 0;
    quint32 m_generation = 0;
};
