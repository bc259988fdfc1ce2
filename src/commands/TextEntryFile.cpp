#include "commands/TextEntryFile.h"

#include "commands/ChatInput.h"
#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/TextListFile.h"
#include "platform/Cp1252.h"
#include "presentation/ChatWriter.h"

#include <QFile>

namespace {

constexpr qsizetype kIdsPerReply = 10;

bool sameId(const QString& a, const QString& b) {
    return a.toLower() == b.toLower();
}

// Appends one line. A file whose last line lacks its line end (a hand edit)
// gets one first, so that the new entry does not run into that line.
bool appendLine(const QString& path, const QString& line, QString* cause) {
    QByteArray bytes = cp1252::encode(line) + "\r\n";
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) &&
        file.read(1) != "\n")
        bytes.prepend("\r\n");
    file.close();
    return AppendToFile(path, bytes, cause);
}

} // namespace

TextEntryFile::TextEntryFile(QString name, QString listWord, QString noneText)
    : m_name(std::move(name)), m_listWord(std::move(listWord)), m_noneText(std::move(noneText)) {}

const QString& TextEntryFile::Separator() {
    static const QString separator = QStringLiteral(" \u00A6 ");
    return separator;
}

QString TextEntryFile::fileName() const {
    return GetSettingsPath() + m_name;
}

bool TextEntryFile::parse(const QString& line, Entry& entry) {
    const qsizetype first = line.indexOf(Separator());
    if (first < 0 || line.size() <= 5) return false;
    const qsizetype from = first + Separator().size();
    const qsizetype second = line.indexOf(Separator(), from);
    entry.id = line.left(first);
    entry.text = second < 0 ? line.mid(from) : line.mid(from, second - from);
    return true;
}

QStringList TextEntryFile::lines() const {
    const QString path = fileName();
    TouchFile(path);
    return ReadTextLines(path);
}

QString TextEntryFile::GetItem(const QString& ID) {
    Entry entry;
    for (const QString& line : lines()) {
        if (parse(line, entry) && sameId(entry.id, ID)) return entry.text.trimmed();
    }
    return {};
}

bool TextEntryFile::AddItem(const QString& ID, const QString& Text) {
    m_writeError.clear();
    if (!GetItem(ID).isEmpty()) return false;
    return appendLine(fileName(), ID + Separator() + Text, &m_writeError);
}

bool TextEntryFile::RemoveItem(const QString& ID) {
    m_writeError.clear();
    QStringList kept;
    bool removed = false;
    Entry entry;
    for (const QString& line : lines()) {
        if (!parse(line, entry)) continue;
        if (sameId(entry.id, ID))
            removed = true;
        else
            kept.append(line);
    }
    return removed && WriteTextLines(fileName(), kept, &m_writeError);
}

void TextEntryFile::List(int Index, bool FromConsole) {
    QStringList ids;
    Entry entry;
    for (const QString& line : lines()) {
        if (parse(line, entry)) ids.append(entry.id);
    }
    const quint32 colour = StatusColor(Status::Information);
    if (ids.isEmpty()) {
        SendCommandReply(Index, FromConsole, m_noneText, colour);
        return;
    }
    for (qsizetype from = 0; from < ids.size(); from += kIdsPerReply) {
        const QString reply = m_listWord + QStringLiteral(": ") +
                              ids.mid(from, kIdsPerReply).join(QStringLiteral(", ")) + u'.';
        SendCommandReply(Index, FromConsole, reply, colour);
    }
}
