#pragma once

#include <QByteArray>
#include <QString>
#include <deque>

// What waits to go to one page. Chat lines queue up to a bound and past it
// are dropped and counted, so a page that stalls costs the bot a fixed amount
// of memory; the page hears how many it missed once it catches up. State
// (the user list, the slots, the status line) is never dropped: a newer copy
// replaces the one still waiting, so the page always ends on the latest.
class PageOutbox {
public:
    // Messages waiting, and bytes handed to the socket but not yet sent,
    // that make a page count as behind.
    static constexpr int kMostQueued = 512;
    static constexpr qint64 kMostInFlight = 256 * 1024;

    // `lines` is how many chat lines the message holds.
    void pushLines(const QByteArray& message, int lines);
    // A state message; `key` names what it describes ("users 3", "status").
    void pushState(const QString& key, const QByteArray& message);

    // The next message that may go now; empty when none may.
    QByteArray take();
    void sent(qint64 bytes) { m_inFlight += bytes; }
    void written(qint64 bytes) { m_inFlight = std::max<qint64>(0, m_inFlight - bytes); }

    qint64 skippedTotal() const { return m_skippedTotal; }
    int queued() const { return int(m_queue.size()); }

private:
    struct Entry {
        QString key; // empty for chat lines
        QByteArray message; // shared with every page's copy
        qint64 skipped = 0; // a gap: lines dropped at this place
    };
    std::deque<Entry> m_queue;
    qint64 m_inFlight = 0;
    qint64 m_skippedTotal = 0;
};
