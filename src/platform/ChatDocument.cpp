#include "platform/ChatDocument.h"

ChatDocument::ChatDocument(QObject* parent) : QObject(parent) {}

QString ChatDocument::text() const {
    return textFrom(0);
}

QString ChatDocument::textFrom(int from) const {
    QString out;
    if (from >= m_length)
        return out;
    out.reserve(m_length - std::max(0, from));
    auto [index, start] = locate(std::max(0, from));
    for (size_t i = index; i < m_runs.size(); ++i) {
        const QString& t = m_runs[i].text;
        if (i == index)
            out += QStringView(t).mid(std::max(0, from) - start);
        else
            out += t;
    }
    return out;
}

void ChatDocument::append(QStringView text, const CharFormat& format) {
    if (text.isEmpty())
        return;
    const int from = m_length;
    if (!m_runs.empty() && m_runs.back().format == format)
        m_runs.back().text += text;
    else
        m_runs.push_back({text.toString(), format});
    m_length += int(text.size());
    Q_EMIT changed(from);
}

void ChatDocument::clear() {
    m_runs.clear();
    m_length = 0;
    Q_EMIT cleared();
}

void ChatDocument::remove(int from, int count) {
    from = std::max(0, from);
    const int to = std::min(m_length, from + count);
    if (from >= to)
        return;
    const size_t first = splitAt(from);
    const size_t last = splitAt(to);
    m_runs.erase(m_runs.begin() + first, m_runs.begin() + last);
    m_length -= to - from;
    mergeFrom(first == 0 ? 0 : first - 1);
    Q_EMIT changed(from);
}

std::pair<size_t, int> ChatDocument::locate(int pos) const {
    // Searched from the end: the writer works on the newest text.
    int start = m_length;
    for (size_t i = m_runs.size(); i-- > 0;) {
        start -= int(m_runs[i].text.size());
        if (pos >= start)
            return {i, start};
    }
    return {m_runs.size(), m_length};
}

size_t ChatDocument::splitAt(int pos) {
    if (pos >= m_length)
        return m_runs.size();
    auto [index, start] = locate(pos);
    if (pos == start)
        return index;
    TextRun tail{m_runs[index].text.mid(pos - start), m_runs[index].format};
    m_runs[index].text.truncate(pos - start);
    m_runs.insert(m_runs.begin() + index + 1, std::move(tail));
    return index + 1;
}

void ChatDocument::mergeFrom(size_t index) {
    size_t i = index;
    while (i + 1 < m_runs.size()) {
        if (m_runs[i].format == m_runs[i + 1].format) {
            m_runs[i].text += m_runs[i + 1].text;
            m_runs.erase(m_runs.begin() + i + 1);
        } else {
            ++i;
        }
    }
}
