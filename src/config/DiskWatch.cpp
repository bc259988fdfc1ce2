#include "config/DiskWatch.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <sys/inotify.h>
#include <unistd.h>

namespace {

// Everything that changes what a stamp holds: a file written, its times or
// mode changed, names made, removed or moved, the folder itself gone.
constexpr uint32_t kChanges = IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE |
                              IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;

} // namespace

DiskWatch& DiskWatch::instance() {
    static DiskWatch watch;
    return watch;
}

DiskWatch::DiskWatch() : m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

DiskWatch::~DiskWatch() {
    if (m_fd >= 0) ::close(m_fd);
}

bool DiskWatch::watchFolder(const QString& folder) {
    if (m_watched.contains(folder)) return true;
    if (inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), kChanges | IN_ONLYDIR) < 0)
        return false;
    m_watched.insert(folder);
    return true;
}

bool DiskWatch::watch(const QString& path) {
    if (m_fd < 0) return false;
    const QFileInfo info(path);
    if (info.isDir() && !watchFolder(info.absoluteFilePath())) return false;
    // A file or folder not made yet shows up first in a folder above it.
    QString folder = info.absolutePath();
    while (!QFileInfo(folder).isDir()) {
        const QString above = QFileInfo(folder).absolutePath();
        if (above == folder) return false;
        folder = above;
    }
    return watchFolder(folder);
}

bool DiskWatch::changedSinceLastLook() {
    if (m_fd < 0) return true;
    alignas(inotify_event) char notes[4096];
    bool changed = false;
    for (;;) {
        const ssize_t got = ::read(m_fd, notes, sizeof notes);
        if (got > 0) {
            changed = true;
            continue;
        }
        if (got < 0 && errno == EINTR) continue;
        break;
    }
    // A folder gone or moved loses its watch: it is made again at the next
    // look at a path in it.
    if (changed) m_watched.clear();
    return changed;
}
