#include "control/ChatFeed.h"

#include "session/SlotTable.h"

#include <QMetaObject>

QString FeedLine::text() const {
    QString out;
    for (const TextRun& run : runs)
        out += run.text;
    return out;
}

ChatFeed& ChatFeed::instance() {
    static ChatFeed* feed = new ChatFeed();
    if (!feed->m_attached) feed->attach();
    return *feed;
}

ChatFeed::ChatFeed() = default;

void ChatFeed::attach() {
    SlotTable& table = SlotTable::instance();
    m_attached = true;
    m_watched.clear();
    m_order.clear();
    for (int i = 0; i <= table.highestIndex(); ++i)
        watch(i);
    connect(&table, &SlotTable::slotCreated, this, &ChatFeed::watch);
    // A table made afresh (tests) is watched from the next use on.
    connect(&table, &QObject::destroyed, this, [this] {
        m_attached = false;
        m_watched.clear();
        m_order.clear();
    });
}

void ChatFeed::watch(int slot) {
    watchView(&rtbChat(slot), slot, false);
    watchView(&rtbWhisper(slot), slot, true);
}

void ChatFeed::watchView(ChatDocument* document, int slot, bool whisper) {
    const size_t index = m_watched.size();
    // What a view held before the feed was made counts as handed on.
    m_watched.push_back({document, slot, whisper, document->length(), document->length()});
    connect(document, &ChatDocument::changed, this,
            [this, index](int from) { viewChanged(index, from); });
    // The writer empties a full view before it starts a line, so every line
    // in it is finished: they go now, before they are lost.
    connect(document, &ChatDocument::aboutToClear, this, &ChatFeed::flush);
    connect(document, &ChatDocument::cleared, this, [this, index] {
        m_watched[index].handedOn = 0;
        m_watched[index].seenLength = 0;
    });
}

void ChatFeed::viewChanged(size_t index, int from) {
    Watched& w = m_watched[index];
    const int length = w.document->length();
    if (from < w.seenLength) {
        // A restyle, or escapes taken out, inside text already there.
        const int removed = std::max(0, w.seenLength - length);
        if (from < w.handedOn) w.handedOn = std::max(from, w.handedOn - removed);
    } else {
        const qsizetype ends = w.document->countFrom(w.seenLength, u'\n');
        for (qsizetype i = 0; i < ends; ++i)
            m_order.push_back(index);
        if (ends > 0) scheduleFlush();
    }
    w.seenLength = length;
}

void ChatFeed::scheduleFlush() {
    // The writer finishes a line (applies its escapes) after its line end has
    // gone in: the line is read once the write is over.
    if (m_flushPending) return;
    m_flushPending = true;
    QMetaObject::invokeMethod(this, &ChatFeed::flush, Qt::QueuedConnection);
}

std::vector<FeedLine> ChatFeed::finishedLines(Watched& w) const {
    std::vector<FeedLine> out;
    int end = w.handedOn;
    for (std::vector<TextRun>& line : w.document->linesBetween(w.handedOn, w.document->length(), &end))
        out.push_back({w.slot, w.whisper, std::move(line)});
    w.handedOn = end;
    return out;
}

void ChatFeed::flush() {
    m_flushPending = false;
    std::vector<std::vector<FeedLine>> pending(m_watched.size());
    std::vector<size_t> taken(m_watched.size(), 0);
    for (size_t i = 0; i < m_watched.size(); ++i)
        pending[i] = finishedLines(m_watched[i]);
    QList<FeedLine> out;
    std::deque<size_t> order;
    order.swap(m_order);
    for (const size_t index : order) {
        if (index < pending.size() && taken[index] < pending[index].size())
            out.append(std::move(pending[index][taken[index]++]));
    }
    for (size_t i = 0; i < pending.size(); ++i) {
        for (size_t j = taken[i]; j < pending[i].size(); ++j)
            out.append(std::move(pending[i][j]));
    }
    if (!out.isEmpty()) Q_EMIT linesWritten(out);
}

QList<FeedLine> ChatFeed::recentLines(int slot, int count) const {
    QList<FeedLine> out;
    if (count <= 0) return out;
    for (const Watched& w : m_watched) {
        if (w.slot != slot || w.handedOn == 0) continue;
        // Only the tail of a long view is read: a line is rarely longer than this.
        const int from = std::max(0, w.handedOn - count * 512);
        std::vector<std::vector<TextRun>> lines = w.document->linesBetween(from, w.handedOn);
        // The first piece may be the end of a line cut in the middle.
        const size_t skip = from > 0 && !lines.empty() ? 1 : 0;
        const size_t first = std::max(skip, lines.size() > size_t(count) ? lines.size() - count : 0);
        for (size_t i = first; i < lines.size(); ++i)
            out.append({w.slot, w.whisper, std::move(lines[i])});
    }
    if (out.size() > count) out.remove(0, out.size() - count);
    return out;
}
