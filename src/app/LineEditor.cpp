#include "app/LineEditor.h"

#include <QFile>
#include <QSocketNotifier>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <editline/readline.h>
#include <unistd.h>

namespace {

LineEditor* g_editor = nullptr;
QStringList g_matches;
// Lines kept in the history file.
constexpr int kHistoryLines = 1000;

} // namespace

LineEditor::LineEditor(const QString& historyFile, QObject* parent)
    : QObject(parent), m_historyFile(historyFile),
      m_notifier(new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this)) {
    g_editor = this;
    // Signals stay the program's: Ctrl+C and SIGTERM end the run cleanly.
    rl_catch_signals = 0;
    rl_readline_name = const_cast<char*>("corvantide");
    rl_attempted_completion_function = &LineEditor::complete;
    using_history();
    stifle_history(kHistoryLines);
    read_history(QFile::encodeName(m_historyFile).constData());
    m_prompt = "> ";
    rl_callback_handler_install(m_prompt.constData(), &LineEditor::lineHandler);
    connect(m_notifier, &QSocketNotifier::activated, this, &LineEditor::readChar);
}

LineEditor::~LineEditor() {
    rl_callback_handler_remove();
    // The prompt's line ends with the run, so the shell's starts on its own.
    if (!m_ended) std::fputs("\n", stdout);
    g_editor = nullptr;
}

void LineEditor::setPrompt(const QString& prompt) {
    m_prompt = prompt.toUtf8();
    rl_set_prompt(m_prompt.constData());
    if (!m_ended) rl_forced_update_display();
}

void LineEditor::printAbove(const QByteArray& bytes) {
    // Back to the start of the line being typed and clear it; the text goes
    // there, and the prompt with what was typed so far follows below it.
    std::fputs("\r\x1b[K", stdout);
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
    // While a line is handed on, libedit draws the next prompt itself once
    // the handler returns.
    if (!m_ended && !m_handlingLine) rl_forced_update_display();
}

void LineEditor::readChar() {
    rl_callback_read_char();
}

void LineEditor::lineHandler(char* line) {
    LineEditor* self = g_editor;
    if (!self) {
        std::free(line);
        return;
    }
    if (!line) {
        // End of input (Ctrl+D on an empty line).
        self->m_ended = true;
        self->m_notifier->setEnabled(false);
        std::fputs("\n", stdout);
        Q_EMIT self->endOfInput();
        return;
    }
    const QString text = QString::fromUtf8(line);
    // A password typed into a setting is not kept.
    if (!text.trimmed().isEmpty() && !text.contains(QLatin1String("password"), Qt::CaseInsensitive)) {
        add_history(line);
        // The file holds what was typed: the user's alone.
        const QByteArray file = QFile::encodeName(self->m_historyFile);
        write_history(file.constData());
        QFile::setPermissions(self->m_historyFile, QFile::ReadOwner | QFile::WriteOwner);
    }
    std::free(line);
    self->m_handlingLine = true;
    Q_EMIT self->lineEntered(text);
    self->m_handlingLine = false;
    // libedit leaves character-at-a-time reading once a line is done, and the
    // next key would wait in it for a whole line: back to it, with a fresh
    // prompt.
    rl_callback_handler_install(self->m_prompt.constData(), &LineEditor::lineHandler);
}

char** LineEditor::complete(const char* text, int start, int) {
    // Only our candidates: never the file names libedit would offer.
    rl_attempted_completion_over = 1;
    g_matches.clear();
    if (g_editor && g_editor->m_completer) {
        const QString before = QString::fromUtf8(rl_line_buffer, start);
        const QString word = QString::fromUtf8(text);
        for (const QString& candidate : g_editor->m_completer(before, word)) {
            if (candidate.startsWith(word, Qt::CaseInsensitive)) g_matches.append(candidate);
        }
    }
    if (g_matches.isEmpty()) return nullptr;
    return rl_completion_matches(text, &LineEditor::nextMatch);
}

char* LineEditor::nextMatch(const char*, int state) {
    if (state >= g_matches.size()) return nullptr;
    return strdup(g_matches[state].toUtf8().constData());
}
