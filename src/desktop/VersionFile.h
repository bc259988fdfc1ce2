#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// What the web site's version file says about a newer build. The file starts
// with the mark byte 0xA4; its lines are "key=value", and only a "version"
// line that names a build above the running one makes the "changes" and
// "file" lines behind it count.
struct VersionFile {
    bool updateFound = false;
    QString version;     // the newer build's "major.minor.revision"
    QStringList changes; // one line of the list of changes each
    QString file;        // the installer's address; never fetched

    // `ownVersion` is the running "major.minor.revision", `ownRevision` its
    // third number: only a third number above it is newer.
    static VersionFile Read(const QByteArray& data, const QString& ownVersion, int ownRevision);
};
