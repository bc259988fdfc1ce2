#include "app/HeadlessConsole.h"

#include "app/LineEditor.h"
#include "chat/BotElement.h"
#include "control/AnsiText.h"
#include "control/ChatFeed.h"
#include "session/SlotTable.h"

#include <unistd.h>

HeadlessConsole::HeadlessConsole(std::FILE* out, bool colour) : m_out(out), m_colour(colour) {
    // Under a service manager standard output is a pipe or the journal's
    // socket: each line goes out as it is printed, not when a buffer fills.
    std::setvbuf(m_out, nullptr, _IOLBF, 0);
    connect(&ChatFeed::instance(), &ChatFeed::linesWritten, this, &HeadlessConsole::printLines);
}

HeadlessConsole::~HeadlessConsole() = default;

void HeadlessConsole::flush() {
    ChatFeed::instance().flush();
    std::fflush(m_out);
}

void HeadlessConsole::printLines(const QList<FeedLine>& lines) {
    QByteArray out;
    for (const FeedLine& line : lines) {
        const QByteArray prefix =
            line.slot > 0 ? '[' + Bots(line.slot).Profile().toUtf8() + "] " : QByteArray();
        out += AnsiLine(prefix, line.runs, m_colour);
    }
    write(out);
}

void HeadlessConsole::printNote(const QString& text) {
    ChatFeed::instance().flush();
    if (text.isEmpty()) return;
    QByteArray out = text.toUtf8();
    if (!out.endsWith('\n')) out += '\n';
    write(out);
}

void HeadlessConsole::write(const QByteArray& bytes) {
    if (bytes.isEmpty()) return;
    if (m_editor) {
        m_editor->printAbove(bytes);
        return;
    }
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), m_out);
    std::fflush(m_out);
}

void HeadlessConsole::setPrompt(const QString& prompt) {
    m_prompt = prompt;
    if (m_editor) m_editor->setPrompt(prompt);
}

void HeadlessConsole::startReading(bool edited, const QString& historyFile,
                                   Completer completer) {
    if (edited) {
        m_editor = new LineEditor(historyFile, this);
        m_editor->setCompleter(std::move(completer));
        if (!m_prompt.isEmpty()) m_editor->setPrompt(m_prompt);
        connect(m_editor, &LineEditor::lineEntered, this, [this](const QString& line) {
            if (m_lineHandler) m_lineHandler(line);
        });
        connect(m_editor, &LineEditor::endOfInput, this, [this] {
            flush();
            Q_EMIT endOfInput();
        });
        return;
    }
    m_input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(m_input, &QSocketNotifier::activated, this, &HeadlessConsole::readInput);
}

void HeadlessConsole::readInput() {
    char chunk[4096];
    const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (n <= 0) {
        m_input->setEnabled(false);
        flush();
        Q_EMIT endOfInput();
        return;
    }
    m_inputBuffer.append(chunk, n);
    qsizetype nl;
    while ((nl = m_inputBuffer.indexOf('\n')) >= 0) {
        QByteArray line = m_inputBuffer.left(nl);
        m_inputBuffer.remove(0, nl + 1);
        if (line.endsWith('\r'))
            line.chop(1);
        if (m_lineHandler)
            m_lineHandler(QString::fromUtf8(line));
    }
}
