#pragma once

#include <QPlainTextEdit>
#include <vector>

class ChatDocument;

// Shows one chat document (a slot's chat or whisper view). The widget follows
// the document lazily: a change marks the text from its position as stale,
// and the stale part is redrawn from the start of its line on a later turn of
// the event loop, a slice at a time, and only while the view is on screen.
// A line appended at the end therefore costs the line, never the view.
class ChatView : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit ChatView(ChatDocument& document, QWidget* parent = nullptr);

    ChatDocument& chatDocument() { return m_document; }
    // Brings the widget up to date at once, whether shown or not.
    void flush();
    // Characters of the document the widget shows now.
    int shownLength() const { return m_shown; }

    // Characters drawn in one turn of the event loop at most.
    static constexpr int kSliceLength = 8192;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void onChanged(int from);
    void onCleared();
    void schedule();
    void renderSlice(int budget);
    // Drops what the widget shows from the line holding `position` onwards.
    void rollBackTo(int position);

    ChatDocument& m_document;
    struct Line {
        int start;        // where the line starts in the document
        bool afterLoneCr; // the "\n" of its "\r\n" is still to come
    };
    // The widget's lines, in order.
    std::vector<Line> m_lines{{0, false}};
    int m_shown = 0;     // document characters in the widget
    int m_validUpTo = 0; // the widget agrees with the document before this
    bool m_scheduled = false;
    // A line break cut between "\r" and "\n" by a slice.
    bool m_pendingCr = false;
};
