#include "config/FileStamp.h"

#include "config/DiskWatch.h"

#include <QFile>
#include <QHash>
#include <chrono>
#include <sys/stat.h>

namespace {

int g_burstDepth = 0;
quint64 g_burstNumber = 0;

// A stamp looked at, kept from burst to burst while nothing changed in its
// folder. Folders the kernel cannot watch for us (and files on a network
// disk, whose changes made elsewhere it never sees) are looked at again: the
// first in the next burst, the second after a while.
struct Seen {
    std::optional<FileStamp> stamp;
    bool watched = false;
    std::chrono::steady_clock::time_point at;
};
constexpr std::chrono::seconds kLongestTrust{2};

QHash<QString, Seen>& seenStamps() {
    static QHash<QString, Seen> seen;
    return seen;
}

const std::optional<FileStamp>& remember(const QString& path, std::optional<FileStamp> stamp) {
    Seen seen{std::move(stamp), DiskWatch::instance().watch(path),
              std::chrono::steady_clock::now()};
    return seenStamps().insert(path, std::move(seen))->stamp;
}

// At the start of a burst: what may have changed since is forgotten.
void forgetChanged() {
    QHash<QString, Seen>& seen = seenStamps();
    if (DiskWatch::instance().changedSinceLastLook()) {
        seen.clear();
        return;
    }
    const auto oldest = std::chrono::steady_clock::now() - kLongestTrust;
    seen.removeIf([oldest](const QHash<QString, Seen>::iterator& it) {
        return !it->watched || it->at < oldest;
    });
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
    if (g_burstDepth > 0) remember(path, stamp);
    return stamp;
}

std::optional<FileStamp> FileStamp::ofInBurst(const QString& path, Kind kind) {
    if (g_burstDepth == 0) return look(path, kind);
    const QHash<QString, Seen>& seen = seenStamps();
    const auto known = seen.constFind(path);
    if (known != seen.cend()) return known->stamp;
    return remember(path, look(path, kind));
}

quint64 FileStamp::burst() {
    return g_burstDepth > 0 ? g_burstNumber : 0;
}

FileStamp::Burst::Burst() {
    if (g_burstDepth++ > 0) return;
    ++g_burstNumber;
    forgetChanged();
}

FileStamp::Burst::~Burst() {
    --g_burstDepth;
}
