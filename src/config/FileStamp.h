#pragma once

#include <QString>
#include <optional>
#include <sys/types.h>

// What tells that a file changed since it was last read: its inode, size and
// modification time. Users edit the settings folder's files by hand during a
// run, and editors that save through a new file change the inode.
class FileStamp {
public:
    // The stamp of the regular file at that path now; nothing when there is
    // no such file.
    static std::optional<FileStamp> of(const QString& path);

    bool operator==(const FileStamp& other) const = default;

private:
    ino_t m_inode = 0;
    off_t m_size = 0;
    qint64 m_seconds = 0;
    qint64 m_nanoseconds = 0;
};
