#include "gui/SendBox.h"

#include "commands/ChatInput.h"
#include "session/SlotTable.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>

namespace {

// The letter of a Ctrl key that puts a colour escape at the caret.
QChar escapeLetter(const QKeyEvent* event) {
    if (event->modifiers() != Qt::ControlModifier) return {};
    switch (event->key()) {
    case Qt::Key_I:
        return u'I';
    case Qt::Key_B:
        return u'B';
    case Qt::Key_U:
        return u'U';
    case Qt::Key_S:
        return u'S';
    default:
        return {};
    }
}

} // namespace

SendBox::SendBox(QWidget* parent) : QComboBox(parent) {
    setObjectName(QStringLiteral("cboSend"));
    setEditable(true);
    // What is sent is what was typed: an editable box would otherwise finish
    // a line that starts an earlier one with the rest of that line. The
    // history stays on the arrow keys and the drop-down.
    setCompleter(nullptr);
    setInsertPolicy(QComboBox::NoInsert);
    setMaxCount(kHistoryLength);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    lineEdit()->setPlaceholderText(QStringLiteral("Type a message"));
    lineEdit()->installEventFilter(this);
    installEventFilter(this);
}

void SendBox::startWhisper(const QString& username) {
    setEditText(QStringLiteral("/w ") + username + u' ');
    lineEdit()->setFocus();
    lineEdit()->end(false);
}

void SendBox::send(int slot, const QString& text) {
    const QString kept = SendUserLine(slot, text);
    insertItem(0, kept);
}

void SendBox::enter() {
    const int slot = SlotTable::instance().CurrentIndex();
    const QString text = currentText();
    if (slot <= 0 || text.isEmpty()) return;
    send(slot, text);
    startNewLine();
}

void SendBox::startNewLine() {
    setCurrentIndex(-1);
    clearEditText();
}

// Up goes back through the history, Down forward again to an empty line.
void SendBox::walkHistory(int step) {
    const int next = currentIndex() + step;
    if (next >= count()) return;
    if (next < 0) {
        startNewLine();
        return;
    }
    setCurrentIndex(next);
}

void SendBox::pasteText(const QString& text) {
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\r|\n"));
    if (!text.contains(lineEnd)) {
        lineEdit()->insert(text);
        return;
    }
    const int slot = SlotTable::instance().CurrentIndex();
    if (slot <= 0) return;
    for (const QString& line : text.split(lineEnd)) {
        if (!line.isEmpty()) send(slot, line);
    }
    startNewLine();
}

bool SendBox::handleKey(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        enter();
        return true;
    }
    if (event->modifiers() == Qt::NoModifier &&
        (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)) {
        walkHistory(event->key() == Qt::Key_Up ? 1 : -1);
        return true;
    }
    if (const QChar letter = escapeLetter(event); !letter.isNull()) {
        lineEdit()->insert(QStringLiteral("\u00FFc") + letter);
        return true;
    }
    if (event->matches(QKeySequence::Paste)) {
        pasteText(QApplication::clipboard()->text());
        return true;
    }
    // The tab character never reaches the box.
    return event->key() == Qt::Key_Tab;
}

bool SendBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // The box's own keys win over the window's shortcuts.
        auto* key = static_cast<QKeyEvent*>(event);
        if (!escapeLetter(key).isNull() || key->matches(QKeySequence::Paste)) {
            event->accept();
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress && handleKey(static_cast<QKeyEvent*>(event))) return true;
    return QComboBox::eventFilter(watched, event);
}
