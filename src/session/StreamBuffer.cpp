#include "session/StreamBuffer.h"

void StreamBuffer::append(const QByteArray& bytes) {
    if (m_head > 0 && m_head >= m_data.size() / 2) {
        m_data.remove(0, m_head);
        m_head = 0;
    }
    m_data.append(bytes);
}

void StreamBuffer::clear() {
    m_data.clear();
    m_head = 0;
    afterStrayFrame = false;
    ++m_generation;
}

void StreamBuffer::consume(int length) {
    m_head += std::clamp<qsizetype>(length, 0, m_data.size() - m_head);
    if (m_head == m_data.size()) {
        m_data.clear();
        m_head = 0;
    }
}
