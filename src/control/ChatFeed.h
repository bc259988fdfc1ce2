#pragma once

#include "platform/ChatDocument.h"

#include <QList>
#include <QObject>
#include <deque>
#include <vector>

// One finished line of a chat view as the view shows it, without its line end.
struct FeedLine {
    int slot = 0;
    bool whisper = false; // from the slot's whisper panel
    std::vector<TextRun> runs;

    QString text() const;
};

// Every line the chat and whisper views of the slots receive, handed on once
// the writer has finished it (its colour escapes applied), in the order the
// lines were written, and always before a view is emptied: a view trimmed at
// its size limit loses nothing here. The headless terminal and whoever follows
// a running bot from another terminal read from it.
class ChatFeed : public QObject {
    Q_OBJECT
public:
    // Made on first use; from then on it watches every slot's views.
    static ChatFeed& instance();

    // Hands on every finished line now.
    void flush();
    // Up to `count` of the last finished lines that a slot's views hold, oldest
    // first: the chat view's, then the whisper panel's. Call flush() first so
    // that none of them is still to be handed on.
    QList<FeedLine> recentLines(int slot, int count) const;

Q_SIGNALS:
    void linesWritten(const QList<FeedLine>& lines);

private:
    ChatFeed();
    struct Watched {
        ChatDocument* document;
        int slot;
        bool whisper;
        int handedOn = 0;  // text before this has been handed on
        int seenLength = 0; // the view's length at its last change
    };
    void attach();
    void watch(int slot);
    void watchView(ChatDocument* document, int slot, bool whisper);
    void viewChanged(size_t watched, int from);
    void scheduleFlush();
    // The finished lines of a view not handed on yet.
    std::vector<FeedLine> finishedLines(Watched& w) const;

    bool m_attached = false;
    bool m_flushPending = false;
    std::vector<Watched> m_watched;
    // The view that finished each line not yet handed on, in writing order.
    std::deque<size_t> m_order;
};
