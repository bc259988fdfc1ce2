#include "config/FileStamp.h"

#include <QFile>
#include <QHash>
#include <sys/stat.h>

namespace {

int g_burstDepth = 0;
quint64 g_burstNumber = 0;

// The stamps looked at in the burst under way.
QHash<QString, std::optional<FileStamp>>& seenInBurst() {
    static QHash<QString, std::optional<FileStamp>> seen;
    return seen;
}

} // namespace

std::optional<FileStamp> FileStamp::look(const QString& path, Kind kind) {
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0) return std::nullopt;
    if (!(kind == Kind::File ? S_ISREG(info.st_mode) : S_ISDIR(info.st_mode))) return std::nullopt;
    FileStamp stamp;
    stamp.m_inode = info.st_ino;
    stamp.m_size = info.st_size;
    stamp.m_seconds = info.st_mtim.tv_sec;
    stamp.m_nanoseconds = info.st_mtim.tv_nsec;
    return stamp;
}

std::optional<FileStamp> FileStamp::of(const QString& path, Kind kind) {
    std::optional<FileStamp> stamp = look(path, kind);
    // The program's own write during a burst is seen by the rest of it.
    if (g_burstDepth > 0) seenInBurst().insert(path, stamp);
    return stamp;
}

std::optional<FileStamp> FileStamp::ofInBurst(const QString& path, Kind kind) {
    if (g_burstDepth == 0) return look(path, kind);
    auto& seen = seenInBurst();
    const auto known = seen.constFind(path);
    if (known != seen.cend()) return *known;
    return *seen.insert(path, look(path, kind));
}

quint64 FileStamp::burst() {
    return g_burstDepth > 0 ? g_burstNumber : 0;
}

FileStamp::Burst::Burst() {
    if (g_burstDepth++ == 0) ++g_burstNumber;
}

FileStamp::Burst::~Burst() {
    if (--g_burstDepth == 0) seenInBurst().clear();
}
