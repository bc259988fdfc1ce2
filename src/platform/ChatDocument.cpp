#include "platform/ChatDocument.h"

#include <algorithm>

namespace {

constexpr char16_t kDiabloLead = 0xFF;

bool isDiabloCode(QChar c) {
    return c == u'c' || c == u'C';
}

} // namespace

ChatDocument::ChatDocument(QObject* parent) : QObject(parent) {}

QChar ChatDocument::at(int pos) const {
    if (pos < 0 || pos >= m_length) return {};
    const auto [index, start] = locate(pos);
    return m_runs[index].text[pos - start];
}

CharFormat ChatDocument::formatAt(int pos) const {
    if (pos < 0 || pos >= m_length) return {};
    return m_runs[locate(pos).first].format;
}

int ChatDocument::nextEscape(int from, EscapeKind kind) const {
    auto it = std::lower_bound(m_escapes.begin(), m_escapes.end(), from,
                               [](const Escape& e, int pos) { return e.position < pos; });
    for (; it != m_escapes.end(); ++it) {
        if (it->kind == kind) return it->position;
    }
    return -1;
}

void ChatDocument::indexEscapes(QStringView text, int from) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c == StarCraftEscape)
            m_escapes.push_back({from + int(i), StarCraftEscape});
        else if (c == kDiabloLead && i + 1 < text.size() && isDiabloCode(text[i + 1]))
            m_escapes.push_back({from + int(i), EscapeKind(text[i + 1].unicode())});
    }
}

void ChatDocument::reindexEscapeAt(int pos) {
    const int lead = pos - 1;
    if (lead < 0 || at(lead) != QChar(kDiabloLead)) return;
    auto it = std::lower_bound(m_escapes.begin(), m_escapes.end(), lead,
                               [](const Escape& e, int p) { return e.position < p; });
    const bool present = it != m_escapes.end() && it->position == lead;
    const QChar next = at(pos);
    if (isDiabloCode(next)) {
        const EscapeKind kind = EscapeKind(next.unicode());
        if (present)
            it->kind = kind;
        else
            m_escapes.insert(it, {lead, kind});
    } else if (present) {
        m_escapes.erase(it);
    }
}

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

qsizetype ChatDocument::countFrom(int from, QChar c) const {
    if (from >= m_length) return 0;
    auto [index, start] = locate(std::max(0, from));
    qsizetype count = QStringView(m_runs[index].text).mid(std::max(0, from) - start).count(c);
    for (size_t i = index + 1; i < m_runs.size(); ++i)
        count += m_runs[i].text.count(c);
    return count;
}

std::vector<std::vector<TextRun>> ChatDocument::linesBetween(int from, int to, int* end) const {
    std::vector<std::vector<TextRun>> lines;
    std::vector<TextRun> current;
    from = std::max(0, from);
    to = std::min(to, m_length);
    if (end) *end = from;
    if (from >= to) return lines;
    const auto endLine = [&] {
        if (!current.empty() && current.back().text.endsWith(u'\r')) {
            current.back().text.chop(1);
            if (current.back().text.isEmpty()) current.pop_back();
        }
        lines.push_back(std::move(current));
        current.clear();
    };
    auto [index, start] = locate(from);
    for (size_t i = index; i < m_runs.size() && start < to; ++i) {
        const TextRun& run = m_runs[i];
        qsizetype a = std::max(from, start) - start;
        const qsizetype b = std::min(to, start + int(run.text.size())) - start;
        for (qsizetype nl; (nl = run.text.indexOf(u'\n', a)) >= 0 && nl < b; a = nl + 1) {
            if (nl > a) current.push_back({run.text.mid(a, nl - a), run.format});
            endLine();
            if (end) *end = start + int(nl) + 1;
        }
        if (a < b) current.push_back({run.text.mid(a, b - a), run.format});
        start += int(run.text.size());
    }
    return lines;
}

void ChatDocument::append(QStringView text, const CharFormat& format) {
    if (text.isEmpty())
        return;
    const int from = m_length;
    // A "\u00FF" that ended the text before may now lead an escape.
    if (from > 0 && m_runs.back().text.back() == QChar(kDiabloLead) && isDiabloCode(text[0]))
        m_escapes.push_back({from - 1, EscapeKind(text[0].unicode())});
    if (!m_runs.empty() && m_runs.back().format == format)
        m_runs.back().text += text;
    else
        m_runs.push_back({text.toString(), format});
    m_length += int(text.size());
    indexEscapes(text, from);
    Q_EMIT changed(from);
}

void ChatDocument::clear() {
    if (m_length > 0) Q_EMIT aboutToClear();
    m_runs.clear();
    m_escapes.clear();
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

    const auto byPosition = [](const Escape& e, int pos) { return e.position < pos; };
    auto gone = std::lower_bound(m_escapes.begin(), m_escapes.end(), from, byPosition);
    auto kept = std::lower_bound(gone, m_escapes.end(), to, byPosition);
    for (auto it = m_escapes.erase(gone, kept); it != m_escapes.end(); ++it)
        it->position -= to - from;
    reindexEscapeAt(from);
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
