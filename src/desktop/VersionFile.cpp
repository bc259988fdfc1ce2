#include "desktop/VersionFile.h"

#include "config/FileHandler.h"
#include "platform/Cp1252.h"

namespace {

constexpr char kMark = '\xA4';

// A third number above the running one is newer; the first two are not
// compared, and a value of fewer than three parts names nothing.
bool namesNewerBuild(const QString& value, const QString& ownVersion, int ownRevision) {
    if (value == ownVersion || !value.contains(u'.')) return false;
    const QStringList parts = value.trimmed().split(u'.');
    return parts.size() >= 3 && LeadingNumber(parts[2]) > ownRevision;
}

} // namespace

VersionFile VersionFile::Read(const QByteArray& data, const QString& ownVersion, int ownRevision) {
    VersionFile result;
    if (data.isEmpty() || data.front() != kMark) return result;
    // Lines end at LF alone: a CR stays in the value.
    const QStringList lines = cp1252::decode(data).split(u'\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        if (!lines[i].contains(u'=')) continue;
        const QStringList pieces = lines[i].split(u'=');
        const QString key = pieces[0].toLower();
        const QString& value = pieces[1];
        if (key == u"version") {
            if (namesNewerBuild(value, ownVersion, ownRevision)) {
                result.updateFound = true;
                result.version = value;
            }
        } else if (key == u"changes" && result.updateFound) {
            result.changes.append(value);
        } else if (key == u"file" && result.updateFound) {
            result.file = value;
        }
    }
    return result;
}
