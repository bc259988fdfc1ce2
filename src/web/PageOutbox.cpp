#include "web/PageOutbox.h"

#include "control/FeedMessages.h"

void PageOutbox::pushLines(const QByteArray& message, int lines) {
    if (int(m_queue.size()) < kMostQueued) {
        m_queue.push_back({{}, message, 0});
        return;
    }
    // Full: the lines become a gap at the end, told in one notice.
    m_skippedTotal += lines;
    if (m_queue.back().skipped == 0) m_queue.push_back({{}, {}, 0});
    m_queue.back().skipped += lines;
}

void PageOutbox::pushState(const QString& key, const QByteArray& message) {
    for (Entry& entry : m_queue) {
        if (entry.key == key) {
            entry.message = message;
            return;
        }
    }
    m_queue.push_back({key, message, 0});
}

QByteArray PageOutbox::take() {
    if (m_inFlight >= kMostInFlight || m_queue.empty()) return {};
    Entry entry = std::move(m_queue.front());
    m_queue.pop_front();
    if (entry.skipped == 0) return entry.message;
    return FeedMessages::Skipped(entry.skipped);
}
