#include "config/FileHandler.h"

#include "config/FileStamp.h"
#include "config/IniFile.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QSaveFile>
#include <cmath>
#include <dirent.h>
#include <limits>

namespace {

constexpr qsizetype kMaxValue = 255;
constexpr qsizetype kKeyListBuffer = 4096;
constexpr qsizetype kCachedFiles = 32;

// Some files are read once per name on screen, and users edit them by hand
// during a run: a parsed file is kept until the file on disk changes.
struct Cached {
    FileStamp stamp;
    IniFile file;
};

QHash<QString, Cached>& cache() {
    static QHash<QString, Cached> files;
    return files;
}

// The parsed file, or nothing when the file does not exist.
const IniFile* loadIni(const QString& path) {
    const std::optional<FileStamp> stamp = FileStamp::ofInBurst(path);
    if (!stamp) {
        cache().remove(path);
        return nullptr;
    }
    auto it = cache().find(path);
    if (it != cache().end() && it->stamp == *stamp) return &it->file;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return nullptr;
    if (cache().size() >= kCachedFiles) cache().clear();
    return &cache().insert(path, Cached{*stamp, IniFile::parse(file.readAll())})->file;
}

std::pair<QString, QString> splitFolder(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash < 0) return {QStringLiteral("."), path};
    return {slash == 0 ? QStringLiteral("/") : path.left(slash), path.mid(slash + 1)};
}

} // namespace

QString ReadIni(const QString& file, const QString& section, const QString& key,
                const QString& defaultValue, bool* found) {
    const IniFile* ini = loadIni(file);
    if (found) *found = ini != nullptr;
    if (!ini) return {};
    return ini->value(section, key).value_or(defaultValue).left(kMaxValue);
}

qint32 ReadIniNumber(const QString& file, const QString& section, const QString& key,
                     qint32 defaultValue) {
    const QString text = ReadIni(file, section, key);
    if (text.isEmpty()) return defaultValue;
    return LeadingNumber(text);
}

QString ReadIniKeys(const QString& file, const QString& section) {
    const IniFile* ini = loadIni(file);
    if (!ini) return {};
    QString list;
    for (const QString& key : ini->keys(section))
        list += key + QChar(0);
    // A listing that overflows keeps its buffer less the two closing NULs.
    if (list.size() >= kKeyListBuffer) list.truncate(kKeyListBuffer - 2);
    return list;
}

bool WriteIni(const QString& file, const QString& section, const QString& key,
              const QString& value) {
    QFile current(file);
    IniFile ini;
    if (current.open(QIODevice::ReadOnly)) ini = IniFile::parse(current.readAll());
    current.close();
    ini.setValue(section, key, value);
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly)) return false;
    out.write(ini.toBytes());
    const bool written = out.commit();
    cache().remove(file);
    FileStamp::of(file); // the rest of a burst reads what was written
    return written;
}

QStringList ListFiles(const QString& pattern) {
    const auto [folder, name] = splitFolder(pattern);
    QStringList names = QDir(folder).entryList({name}, QDir::Files | QDir::Hidden | QDir::System,
                                               QDir::Name | QDir::IgnoreCase);
    if (names.isEmpty()) names.append(QString());
    return names;
}

bool PathExists(const QString& file, const QString& folder) {
    if (file.isEmpty()) {
        if (folder.isEmpty()) return false;
        DIR* dir = ::opendir(QFile::encodeName(folder).constData());
        if (dir) ::closedir(dir);
        return dir != nullptr;
    }
    const auto [parent, name] = splitFolder(file);
    if (name.isEmpty()) return false;
    const QStringList entries =
        QDir(parent).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::NoSort);
    for (const QString& entry : entries) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return true;
    }
    return false;
}

QString TrimNull(const QString& text) {
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

qint32 LeadingNumber(QStringView text) {
    qsizetype i = 0;
    while (i < text.size() && (text[i] == u' ' || text[i] == u'\t'))
        ++i;
    const qsizetype start = i;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) ++i;
    const qsizetype digitsFrom = i;
    while (i < text.size() && text[i].isDigit() && text[i].unicode() < 0x80)
        ++i;
    if (i < text.size() && text[i] == u'.') {
        ++i;
        while (i < text.size() && text[i].isDigit() && text[i].unicode() < 0x80)
            ++i;
    }
    if (i == digitsFrom || (i == digitsFrom + 1 && text[digitsFrom] == u'.')) return 0;
    const double number = text.mid(start, i - start).toString().toDouble();
    const double rounded = std::nearbyint(number); // the default mode rounds halves to even
    constexpr double kLow = std::numeric_limits<qint32>::min();
    constexpr double kHigh = std::numeric_limits<qint32>::max();
    if (!(rounded >= kLow)) return std::numeric_limits<qint32>::min();
    if (rounded > kHigh) return std::numeric_limits<qint32>::max();
    return static_cast<qint32>(rounded);
}
