#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <cstdio>
#include <functional>
#include <vector>

class ChatDocument;

// The program without a window: what the chat views receive goes to standard
// output, the console's lines as they are and a profile's lines behind
// "[profile] ", in colour when the output is a terminal. Lines typed on
// standard input are handed on; end of input ends the run.
class HeadlessConsole : public QObject {
    Q_OBJECT
public:
    using LineHandler = std::function<void(const QString& line)>;

    HeadlessConsole(std::FILE* out, bool colour);
    void setLineHandler(LineHandler handler) { m_lineHandler = std::move(handler); }
    void startReading();
    // Prints whatever complete lines have not been printed yet.
    void flush();

Q_SIGNALS:
    void endOfInput();

private:
    struct Watched {
        ChatDocument* document;
        int slot;
        int printed;
    };
    void watch(int slot);
    void scheduleFlush();
    void flushDocument(Watched& w);
    void readInput();

    std::FILE* m_out;
    bool m_colour;
    bool m_flushPending = false;
    std::vector<Watched> m_watched;
    QSocketNotifier* m_input = nullptr;
    QByteArray m_inputBuffer;
    LineHandler m_lineHandler;
};
