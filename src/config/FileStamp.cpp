#include "config/FileStamp.h"

#include <QFile>
#include <sys/stat.h>

std::optional<FileStamp> FileStamp::of(const QString& path) {
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    FileStamp stamp;
    stamp.m_inode = info.st_ino;
    stamp.m_size = info.st_size;
    stamp.m_seconds = info.st_mtim.tv_sec;
    stamp.m_nanoseconds = info.st_mtim.tv_nsec;
    return stamp;
}
