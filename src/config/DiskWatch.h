#pragma once

#include <QSet>
#include <QString>

// Tells cheaply whether anything changed in the folders whose files the chat
// path reads (the settings folder, the mail folder), so that their stamps
// need not be looked at again for every read from a socket. The kernel notes
// each change in a watched folder as it is made; a change counts from the
// next look at the notes.
class DiskWatch {
public:
    static DiskWatch& instance();
    ~DiskWatch();
    DiskWatch(const DiskWatch&) = delete;
    DiskWatch& operator=(const DiskWatch&) = delete;

    // Watches what a change of the file or folder at `path` would show in:
    // its folder (or the nearest one that exists) and, for a folder, the
    // folder itself. False when the path cannot be watched: its stamp must
    // then be looked at each time.
    bool watch(const QString& path);
    // Reads the notes without waiting; true when anything changed since the
    // last call (or notes were lost, or nothing can be watched).
    bool changedSinceLastLook();

private:
    DiskWatch();
    bool watchFolder(const QString& folder);

    int m_fd = -1;
    QSet<QString> m_watched;
};
