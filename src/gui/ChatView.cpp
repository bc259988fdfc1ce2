#include "gui/ChatView.h"

#include "gui/IconPainter.h"
#include "platform/ChatDocument.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>
#include <algorithm>

namespace {

QTextCharFormat toCharFormat(const CharFormat& format) {
    QTextCharFormat out;
    out.setForeground(IconPainter::fromBgr(format.color));
    out.setFontWeight(format.bold ? QFont::Bold : QFont::Normal);
    out.setFontItalic(format.italic);
    out.setFontUnderline(format.underline);
    out.setFontStrikeOut(format.strike);
    return out;
}

} // namespace

ChatView::ChatView(ChatDocument& document, QWidget* parent)
    : QPlainTextEdit(parent), m_document(document) {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    connect(&m_document, &ChatDocument::changed, this, &ChatView::onChanged);
    connect(&m_document, &ChatDocument::cleared, this, &ChatView::onCleared);
    if (!m_document.isEmpty()) schedule();
}

void ChatView::flush() {
    while (m_shown < m_document.length() || m_validUpTo < m_shown)
        renderSlice(m_document.length() + 1);
}

void ChatView::showEvent(QShowEvent* event) {
    QPlainTextEdit::showEvent(event);
    schedule();
}

void ChatView::onChanged(int from) {
    m_validUpTo = std::min(m_validUpTo, from);
    schedule();
}

void ChatView::onCleared() {
    clear();
    m_lines = {{0, false}};
    m_shown = 0;
    m_validUpTo = 0;
    m_pendingCr = false;
}

void ChatView::schedule() {
    if (m_scheduled || !isVisible()) return;
    m_scheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_scheduled = false;
        renderSlice(kSliceLength);
        if (m_shown < m_document.length() || m_validUpTo < m_shown) schedule();
    });
}

void ChatView::rollBackTo(int position) {
    const auto after = std::upper_bound(m_lines.begin(), m_lines.end(), position,
                                        [](int pos, const Line& line) { return pos < line.start; });
    const size_t line = size_t(std::max<ptrdiff_t>(0, (after - m_lines.begin()) - 1));
    QTextCursor cursor(QPlainTextEdit::document());
    cursor.setPosition(QPlainTextEdit::document()->findBlockByNumber(int(line)).position());
    cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    m_lines.resize(line + 1);
    m_shown = m_lines.back().start;
    m_pendingCr = m_lines.back().afterLoneCr;
}

void ChatView::renderSlice(int budget) {
    if (m_validUpTo < m_shown) rollBackTo(m_validUpTo);
    const int end = std::min(m_document.length(), m_shown + budget);
    m_validUpTo = m_shown;
    if (end <= m_shown) return;

    QScrollBar* bar = verticalScrollBar();
    const bool followEnd = bar->value() >= bar->maximum() - 2;

    // The run that holds the first character to draw, searched from the end
    // where the new text is.
    const std::vector<TextRun>& runs = m_document.runs();
    size_t index = runs.size();
    int runStart = m_document.length();
    while (index > 0 && runStart > m_shown) {
        --index;
        runStart -= int(runs[index].text.size());
    }

    QTextCursor cursor(QPlainTextEdit::document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock();
    int pos = m_shown;
    for (; index < runs.size() && pos < end; ++index) {
        const TextRun& run = runs[index];
        const int from = pos - runStart;
        const int to = std::min(int(run.text.size()), end - runStart);
        runStart += int(run.text.size());
        const QStringView text = QStringView(run.text).mid(from, to - from);
        const QTextCharFormat format = toCharFormat(run.format);
        qsizetype piece = 0;
        // "\r\n", "\r" and "\n" each end a line, as the document's writers
        // mean them.
        for (qsizetype k = 0; k < text.size(); ++k) {
            const QChar c = text[k];
            if (c == u'\n' && m_pendingCr) {
                m_pendingCr = false;
                m_lines.back() = {pos + int(k) + 1, false};
                piece = k + 1;
                continue;
            }
            m_pendingCr = false;
            if (c != u'\r' && c != u'\n') continue;
            if (k > piece) cursor.insertText(text.mid(piece, k - piece).toString(), format);
            cursor.insertBlock();
            m_pendingCr = c == u'\r';
            m_lines.push_back({pos + int(k) + 1, m_pendingCr});
            piece = k + 1;
        }
        if (piece < text.size()) cursor.insertText(text.mid(piece).toString(), format);
        pos += int(text.size());
    }
    cursor.endEditBlock();
    m_shown = pos;
    m_validUpTo = pos;
    if (followEnd) bar->setValue(bar->maximum());
}
