#include "commands/ProfanityReader.h"

#include "config/FileHandler.h"
#include "config/Folders.h"

namespace {

// A plain replacement that leaves the text alone when there is nothing to
// look for.
void replaceAll(QString& text, const QString& before, const QString& after) {
    if (!before.isEmpty()) text.replace(before, after, Qt::CaseSensitive);
}

} // namespace

ProfanityReader::ProfanityReader() {
    LoadProfanity();
}

// Asked for on every line shown: the name alone, without making sure the
// folders exist, which costs a look at the disk each time.
QString ProfanityReader::file() {
    return SettingsFilePath(QStringLiteral("Profanity.ini"));
}

void ProfanityReader::LoadProfanity() {
    m_entries.clear();
    const QString path = file();
    const QString section = QStringLiteral("Main");
    // Every part of the NUL-separated listing counts, the empty one behind the
    // last NUL too.
    for (const QString& key : ReadIniKeys(path, section).split(QChar(0)))
        m_entries.append(key + u'\r' + ReadIni(path, section, key, QString()));
}

void ProfanityReader::EncodeProfanity(QString& Text) const {
    for (const QString& entry : m_entries) {
        const qsizetype cr = entry.indexOf(u'\r');
        replaceAll(Text, entry.mid(cr + 1), entry.left(cr));
    }
}

void ProfanityReader::DecodeProfanity(QString& Text) const {
    for (const QString& entry : m_entries) {
        const qsizetype cr = entry.indexOf(u'\r');
        replaceAll(Text, entry.left(cr), entry.mid(cr + 1));
    }
}
