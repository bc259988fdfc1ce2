#pragma once

#include <QString>
#include <optional>
#include <sys/types.h>

// What tells that a file changed since it was last read: its inode, size and
// modification time. Users edit the settings folder's files by hand during a
// run, and editors that save through a new file change the inode.
class FileStamp {
public:
    // A folder's stamp changes when a file in it is made, removed or renamed.
    enum class Kind { File, Folder };

    // The stamp of the regular file (or the folder) at that path now;
    // nothing when there is no such file.
    static std::optional<FileStamp> of(const QString& path, Kind kind = Kind::File);

    // The same, looked at only when it may have changed: the events of one
    // read from a socket are handled in a few microseconds each, and a look
    // at the disk for each read would cost more than the rest of the work.
    // Within a burst a stamp is looked at once; it is kept for the bursts
    // after while the kernel reports no change in its folder (at most two
    // seconds). A hand edit made during a burst counts from the next one, as
    // if made just after it. Outside a burst every call looks.
    static std::optional<FileStamp> ofInBurst(const QString& path, Kind kind = Kind::File);

    // The number of the burst under way, a new one each time; 0 outside one.
    static quint64 burst();

    // Marks a burst for as long as it lives; bursts may nest.
    class Burst {
    public:
        Burst();
        ~Burst();
        Burst(const Burst&) = delete;
        Burst& operator=(const Burst&) = delete;
    };

    bool operator==(const FileStamp& other) const = default;

private:
    static std::optional<FileStamp> look(const QString& path, Kind kind);

    ino_t m_inode = 0;
    off_t m_size = 0;
    qint64 m_seconds = 0;
    qint64 m_nanoseconds = 0;
};
