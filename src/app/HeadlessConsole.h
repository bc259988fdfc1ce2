#pragma once

#include <QList>
#include <QObject>
#include <QSocketNotifier>

#include <cstdio>
#include <functional>

struct FeedLine;
class LineEditor;

// The program without a window: every line the chat and whisper views receive
// goes to standard output as it is written, the console's as they are and a
// profile's behind "[profile] ", in colour when the output is a terminal.
// Lines typed on standard input are handed on, edited with history and
// completion when both ends are a terminal; end of input ends the run.
class HeadlessConsole : public QObject {
    Q_OBJECT
public:
    using LineHandler = std::function<void(const QString& line)>;
    using Completer = std::function<QStringList(const QString& before, const QString& word)>;

    HeadlessConsole(std::FILE* out, bool colour);
    ~HeadlessConsole() override;
    void setLineHandler(LineHandler handler) { m_lineHandler = std::move(handler); }
    // Plain reading, or line editing with its history in `historyFile`.
    void startReading(bool edited, const QString& historyFile, Completer completer);
    // Prints whatever finished lines have not been printed yet.
    void flush();
    // A line of the terminal's own, in no view: an answer to a command typed
    // here, or where typed lines go.
    void printNote(const QString& text);
    // What the prompt says when lines are edited.
    void setPrompt(const QString& prompt);

Q_SIGNALS:
    void endOfInput();

private:
    void printLines(const QList<FeedLine>& lines);
    void write(const QByteArray& bytes);
    void readInput();

    std::FILE* m_out;
    bool m_colour;
    QSocketNotifier* m_input = nullptr;
    LineEditor* m_editor = nullptr;
    QByteArray m_inputBuffer;
    QString m_prompt;
    LineHandler m_lineHandler;
};
