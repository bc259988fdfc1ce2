#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <vector>

class ChatDocument;

// What the pages see, as the window shows it: the runs appended to each
// slot's chat and whisper documents (timestamps included, in the theme's
// colours), the user lists, the loaded slots and the status line. It turns
// the core's change signals into messages once, for every page alike, and
// only while a page listens.
class PageFeed : public QObject {
    Q_OBJECT
public:
    // Lines of each view a page gets when it opens.
    static constexpr int kRecentLines = 200;

    explicit PageFeed(QObject* parent = nullptr);
    void setListening(bool listening);

    // Everything a new page needs, as messages in order.
    std::vector<QString> snapshot() const;

Q_SIGNALS:
    // Chat lines (droppable when a page falls behind).
    void lines(const QString& message, int count);
    // The latest state of what `key` names.
    void state(const QString& key, const QString& message);

private:
    struct Watched {
        ChatDocument* document;
        int slot;
        QString view; // "chat" or "whisper"
        int sent = 0;
    };
    void watch(int slot);
    void watchDocument(ChatDocument* document, int slot, const QString& view);
    void scheduleLines();
    void flushLines();
    void flushState();

    bool m_listening = false;
    bool m_linesPending = false;
    std::vector<Watched> m_watched;
    QSet<int> m_dirtyUsers;
    QTimer m_stateTimer;
    QString m_lastSlots;
    QString m_lastStatus;
};
