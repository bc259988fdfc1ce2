#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QSocketNotifier;

// Line editing on a terminal through libedit: the arrow keys, history kept in
// a file, Tab completion. Read a character at a time from the event loop
// (libedit's callback interface under a notifier on standard input), so the
// bot never waits on the keyboard. One at a time: libedit's state is global.
class LineEditor : public QObject {
    Q_OBJECT
public:
    // Candidates for the word being typed: the line before the word, and the
    // word so far.
    using Completer = std::function<QStringList(const QString& before, const QString& word)>;

    LineEditor(const QString& historyFile, QObject* parent = nullptr);
    ~LineEditor() override;

    void setPrompt(const QString& prompt);
    void setCompleter(Completer completer) { m_completer = std::move(completer); }
    // Writes `bytes` (whole lines) above the line being typed, which is drawn
    // again below them.
    void printAbove(const QByteArray& bytes);

Q_SIGNALS:
    void lineEntered(const QString& line);
    void endOfInput();

private:
    static void lineHandler(char* line);
    static char** complete(const char* text, int start, int end);
    static char* nextMatch(const char* text, int state);
    void readChar();

    QString m_historyFile;
    QByteArray m_prompt;
    Completer m_completer;
    QSocketNotifier* m_notifier;
    bool m_ended = false;
    bool m_handlingLine = false;
};
