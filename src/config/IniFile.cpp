#include "config/IniFile.h"

#include "platform/Cp1252.h"

namespace {

constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";

bool sameName(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

IniFile IniFile::parse(QByteArrayView bytes) {
    IniFile file;
    if (bytes.startsWith(kUtf8Mark)) {
        file.utf8_ = true;
        bytes = bytes.sliced(3);
    }
    const qsizetype firstBreak = bytes.indexOf('\n');
    if (firstBreak >= 0 && (firstBreak == 0 || bytes[firstBreak - 1] != '\r')) file.lineEnd_ = "\n";
    const QString text = file.utf8_ ? QString::fromUtf8(bytes) : cp1252::decode(bytes);
    file.lines_ = text.split(u'\n');
    if (file.lines_.last().isEmpty()) file.lines_.removeLast();
    for (QString& line : file.lines_) {
        if (line.endsWith(u'\r')) line.chop(1);
    }
    file.index();
    return file;
}

QByteArray IniFile::toBytes() const {
    QByteArray bytes = utf8_ ? QByteArray(kUtf8Mark) : QByteArray();
    for (const QString& line : lines_) {
        bytes += utf8_ ? line.toUtf8() : cp1252::encode(line);
        bytes += lineEnd_;
    }
    return bytes;
}

// Lines before the first header belong to a section without a name.
void IniFile::index() {
    sections_ = {Section{QString(), -1, {}}};
    for (qsizetype i = 0; i < lines_.size(); ++i) {
        const QString line = lines_[i].trimmed();
        if (line.isEmpty()) continue;
        if (line.startsWith(u'[')) {
            const qsizetype close = line.lastIndexOf(u']');
            if (close > 0) {
                sections_.append(Section{line.mid(1, close - 1), i, {}});
                continue;
            }
        }
        Section& section = sections_.last();
        section.lastLine = i;
        if (line.startsWith(u';')) continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0) {
            section.entries.append(Entry{line, std::nullopt, i});
            continue;
        }
        QString value = line.mid(equals + 1).trimmed();
        if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
            value = value.mid(1, value.size() - 2);
        section.entries.append(Entry{line.left(equals).trimmed(), value, i});
    }
}

const IniFile::Section* IniFile::findSection(QStringView name) const {
    // The nameless head of the file is not a section a caller can name.
    for (qsizetype i = 1; i < sections_.size(); ++i) {
        if (sameName(sections_[i].name, name)) return &sections_[i];
    }
    return nullptr;
}

std::optional<QString> IniFile::value(QStringView section, QStringView key) const {
    const Section* found = findSection(section);
    if (!found) return std::nullopt;
    for (const Entry& entry : found->entries) {
        if (sameName(entry.key, key)) return entry.value;
    }
    return std::nullopt;
}

QStringList IniFile::keys(QStringView section) const {
    QStringList names;
    if (const Section* found = findSection(section)) {
        for (const Entry& entry : found->entries)
            names.append(entry.key);
    }
    return names;
}

void IniFile::setValue(const QString& section, const QString& key, const QString& value) {
    const QString line = key + u'=' + value;
    if (const Section* found = findSection(section)) {
        for (const Entry& entry : found->entries) {
            if (sameName(entry.key, key)) {
                lines_[entry.line] = entry.key + u'=' + value;
                index();
                return;
            }
        }
        lines_.insert(found->lastLine + 1, line);
    } else {
        if (!lines_.isEmpty() && !lines_.last().trimmed().isEmpty()) lines_.append(QString());
        lines_.append(u'[' + section + u']');
        lines_.append(line);
    }
    index();
}
