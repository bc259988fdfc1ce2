#include "config/FileWrites.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kPrivateFile = 0600;
constexpr mode_t kSharedFile = 0666; // less the umask

bool fail(QString* cause, int errnum) {
    if (cause) *cause = DescribeWriteError(errnum);
    return false;
}

bool writeAll(int fd, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = ENOSPC;
            return false;
        }
        done += n;
    }
    return true;
}

// Closes the descriptor; its error, if any, is the write's.
bool closeChecked(int fd) {
    return ::close(fd) == 0 || errno == EINTR;
}

} // namespace

QString DescribeWriteError(int errnum) {
    switch (errnum) {
    case ENOSPC:
        return QStringLiteral("the disk is full");
    case EDQUOT:
        return QStringLiteral("the disk quota is used up");
    case EROFS:
        return QStringLiteral("the file system is read-only");
    case EACCES:
    case EPERM:
        return QStringLiteral("permission denied");
    case EFBIG:
        return QStringLiteral("the file has grown past the size this process may write");
    case EIO:
        return QStringLiteral("the disk reported an input/output error");
    default:
        return QString::fromLocal8Bit(std::strerror(errnum));
    }
}

bool AppendToFile(const QString& path, const QByteArray& bytes, QString* cause, FileAccess access) {
    const QByteArray name = QFile::encodeName(path);
    const bool isPrivate = access == FileAccess::Private;
    const int fd = ::open(name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC,
                          isPrivate ? kPrivateFile : kSharedFile);
    if (fd < 0) return fail(cause, errno);
    struct stat info {};
    if (::fstat(fd, &info) != 0 || (isPrivate && ::fchmod(fd, kPrivateFile) != 0)) {
        const int error = errno;
        ::close(fd);
        return fail(cause, error);
    }
    if (!writeAll(fd, bytes) || ::fsync(fd) != 0) {
        const int error = errno;
        // What went out of a cut-short write would be half a line.
        if (::ftruncate(fd, info.st_size) == 0) ::fsync(fd);
        ::close(fd);
        return fail(cause, error);
    }
    if (!closeChecked(fd)) return fail(cause, errno);
    return true;
}

bool ReplaceFile(const QString& path, const QByteArray& bytes, QString* cause, FileAccess access) {
    // A file the user keeps elsewhere behind a link is replaced there.
    const QFileInfo link(path);
    const QByteArray name = QFile::encodeName(link.isSymLink() ? link.symLinkTarget() : path);
    struct stat existing {};
    const bool exists = ::stat(name.constData(), &existing) == 0;
    mode_t mode = kSharedFile;
    if (access == FileAccess::Private)
        mode = kPrivateFile;
    else if (exists)
        mode = existing.st_mode & 07777;
    QByteArray temporary = name + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) return fail(cause, errno);
    // A new shared file gets what the umask allows, as any new file would.
    if (!exists && access == FileAccess::Shared) {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode &= ~mask;
    }
    const bool written = ::fchmod(fd, mode) == 0 && writeAll(fd, bytes) && ::fsync(fd) == 0;
    const int error = errno;
    if (!closeChecked(fd) || !written || ::rename(temporary.constData(), name.constData()) != 0) {
        const int last = written ? errno : error;
        ::unlink(temporary.constData());
        return fail(cause, last);
    }
    return true;
}

bool MakePrivateFolder(const QString& path, QString* cause) {
    const QFileInfo info(path);
    if (!info.exists() && !QDir().mkpath(QFileInfo(info.absoluteFilePath()).path()))
        return fail(cause, errno ? errno : EACCES);
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), 0700) != 0 && errno != EEXIST) return fail(cause, errno);
    struct stat folder {};
    if (::stat(name.constData(), &folder) != 0) return fail(cause, errno);
    if (!S_ISDIR(folder.st_mode)) return fail(cause, ENOTDIR);
    if ((folder.st_mode & 0777) != 0700 && ::chmod(name.constData(), 0700) != 0)
        return fail(cause, errno);
    return true;
}
