#pragma once

#include <QByteArray>
#include <QString>

// Writes of the program's own files that tell their caller whether the bytes
// reached the disk, and if not, why, in words a user understands ("the disk
// is full"). A write that fails leaves the file as it was.

// Who may read a file the program writes. Private files (mail, logs) are the
// user's alone (0600) and are made so also when they exist already; shared
// files keep the mode they have, and new ones follow the umask.
enum class FileAccess { Shared, Private };

// The cause of a failed write, from the system's error number.
QString DescribeWriteError(int errnum);

// Appends the bytes, creating the file when missing, and flushes them to the
// disk. A write cut short is undone, so no half line stays behind.
bool AppendToFile(const QString& path, const QByteArray& bytes, QString* cause = nullptr,
                  FileAccess access = FileAccess::Shared);
// Replaces the file with the bytes: written beside it, flushed, then renamed
// over it, so a failure or a crash leaves the old file whole.
bool ReplaceFile(const QString& path, const QByteArray& bytes, QString* cause = nullptr,
                 FileAccess access = FileAccess::Shared);
// Creates a folder the user alone may enter (0700), with its parents, and
// makes an existing one so. False, with the cause, when it cannot be had.
bool MakePrivateFolder(const QString& path, QString* cause = nullptr);
