#pragma once

#include <QComboBox>

// The input box under the chat: an editable line with the sent lines as its
// drop-down history, newest first; Up and Down walk through it. Enter sends the line to the active slot,
// Ctrl+I, Ctrl+B, Ctrl+U and Ctrl+S put the colour escapes at the caret, and
// a pasted text of several lines sends each line. The console sends nothing.
class SendBox : public QComboBox {
    Q_OBJECT
public:
    explicit SendBox(QWidget* parent = nullptr);

    // Puts a whisper to a user into the box, ready for the message.
    void startWhisper(const QString& username);
    // Sends each line of a text as if typed and entered, then empties the
    // box; a text without a line end is only put into the box. Nothing is
    // sent, and the box is left alone, while the console is active.
    void pasteText(const QString& text);
    // Enter: sends the box's text when a profile is active.
    void enter();

    static constexpr int kHistoryLength = 100;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The slot's send road, then the history.
    void send(int slot, const QString& text);
    // An empty box, with no line of the history chosen.
    void startNewLine();
    void walkHistory(int step);
    bool handleKey(QKeyEvent* event);
};
