#include "app/HeadlessConsole.h"

#include "chat/BotElement.h"
#include "platform/ChatDocument.h"
#include "session/SlotTable.h"

#include <QMetaObject>

#include <unistd.h>

namespace {

QByteArray ansiFormat(const CharFormat& f) {
    QByteArray code = "\x1b[0";
    if (f.bold)
        code += ";1";
    if (f.italic)
        code += ";3";
    if (f.underline)
        code += ";4";
    if (f.strike)
        code += ";9";
    const quint32 c = f.color & 0xFFFFFF;
    code += ";38;2;" + QByteArray::number(c & 0xFF) + ';' + QByteArray::number((c >> 8) & 0xFF) +
            ';' + QByteArray::number((c >> 16) & 0xFF) + 'm';
    return code;
}

} // namespace

HeadlessConsole::HeadlessConsole(std::FILE* out, bool colour) : m_out(out), m_colour(colour) {
    SlotTable& table = SlotTable::instance();
    for (int i = 0; i <= table.highestIndex(); ++i)
        watch(i);
    connect(&table, &SlotTable::slotCreated, this, &HeadlessConsole::watch);
}

void HeadlessConsole::watch(int slot) {
    ChatDocument* doc = &rtbChat(slot);
    m_watched.push_back({doc, slot, 0});
    connect(doc, &ChatDocument::changed, this, [this] { scheduleFlush(); });
    connect(doc, &ChatDocument::cleared, this, [this, doc] {
        for (Watched& w : m_watched) {
            if (w.document == doc)
                w.printed = 0;
        }
    });
}

void HeadlessConsole::scheduleFlush() {
    // A line is finished by the writer (escapes applied) before it is shown.
    if (m_flushPending)
        return;
    m_flushPending = true;
    QMetaObject::invokeMethod(this, &HeadlessConsole::flush, Qt::QueuedConnection);
}

void HeadlessConsole::flush() {
    m_flushPending = false;
    for (Watched& w : m_watched)
        flushDocument(w);
    std::fflush(m_out);
}

void HeadlessConsole::flushDocument(Watched& w) {
    const QString pending = w.document->textFrom(w.printed);
    const qsizetype lastEnd = pending.lastIndexOf(QLatin1String("\r\n"));
    if (lastEnd < 0)
        return;
    const int end = w.printed + int(lastEnd) + 2;
    const QByteArray prefix =
        w.slot > 0 ? ('[' + Bots(w.slot).Profile().toUtf8() + "] ") : QByteArray();
    QByteArray out;
    bool atLineStart = true;
    int pos = 0;
    for (const TextRun& run : w.document->runs()) {
        const int runEnd = pos + int(run.text.size());
        const int from = std::max(pos, w.printed);
        const int to = std::min(runEnd, end);
        if (from < to) {
            const QString piece = run.text.mid(from - pos, to - from);
            qsizetype start = 0;
            while (start < piece.size()) {
                if (atLineStart) {
                    out += prefix;
                    atLineStart = false;
                }
                const qsizetype nl = piece.indexOf(QLatin1String("\r\n"), start);
                const qsizetype stop = nl < 0 ? piece.size() : nl;
                if (m_colour && stop > start)
                    out += ansiFormat(run.format);
                out += piece.mid(start, stop - start).toUtf8();
                if (nl < 0)
                    break;
                if (m_colour)
                    out += "\x1b[0m";
                out += '\n';
                atLineStart = true;
                start = nl + 2;
            }
        }
        pos = runEnd;
        if (pos >= end)
            break;
    }
    std::fwrite(out.constData(), 1, size_t(out.size()), m_out);
    w.printed = end;
}

void HeadlessConsole::startReading() {
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
