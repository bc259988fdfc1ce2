#pragma once

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <vector>

struct FeedLine;

// What the pages see, as the window shows it: the lines the chat feed hands
// on (the followers' own messages, one JSON object a line, so the page and
// `corvantide tail` read the same thing), and beside them what only a page
// shows: the user lists, the loaded slots and the status line. Messages are
// made once for every page alike, and only while a page listens.
class PageFeed : public QObject {
    Q_OBJECT
public:
    // Lines of each view a page gets when it opens.
    static constexpr int kRecentLines = 200;

    explicit PageFeed(QObject* parent = nullptr);
    void setListening(bool listening);

    // Everything a new page needs, in order.
    std::vector<QByteArray> snapshot() const;

Q_SIGNALS:
    // Chat lines, `count` of them (droppable when a page falls behind).
    void lines(const QByteArray& messages, int count);
    // The latest state of what `key` names.
    void state(const QString& key, const QByteArray& message);

private:
    void linesWritten(const QList<FeedLine>& lines);
    void watchUsers(int slot);
    void flushState();

    bool m_listening = false;
    QSet<int> m_dirtyUsers;
    QTimer m_stateTimer;
    QByteArray m_lastSlots;
    QByteArray m_lastStatus;
};
