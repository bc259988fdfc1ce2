#include "control/ControlSocketFolder.h"

#include "config/Folders.h"
#include "control/LocalUser.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

// The room a local socket's address has for its path, less the final NUL.
constexpr qsizetype kLongestSocketPath = 107;

QString osError(int code) {
    return QString::fromLocal8Bit(std::strerror(code));
}

// Empty when `folder` is a folder of this user's that no one else may enter;
// otherwise why not. The runtime folder may be a link the system made; our
// own folder in the shared temporary folder may not.
QString whyNotPrivate(const QString& folder, bool followLink) {
    struct stat facts {};
    const QByteArray path = QFile::encodeName(folder);
    if ((followLink ? stat(path.constData(), &facts) : lstat(path.constData(), &facts)) != 0)
        return QStringLiteral("the folder %1 cannot be read (%2)").arg(folder, osError(errno));
    if (S_ISLNK(facts.st_mode))
        return QStringLiteral("%1 is a link, not a folder of your own; remove it").arg(folder);
    if (!S_ISDIR(facts.st_mode)) return QStringLiteral("%1 is not a folder").arg(folder);
    if (facts.st_uid != LocalUser::Me())
        return QStringLiteral("the folder %1 belongs to the user %2, not to you; set TMPDIR to "
                              "a folder of your own")
            .arg(folder, LocalUser::Name(facts.st_uid));
    if ((facts.st_mode & 077) != 0)
        return QStringLiteral("the folder %1 is open to other users (mode %2); make it 0700 or "
                              "remove it")
            .arg(folder)
            .arg(facts.st_mode & 07777, 4, 8, QLatin1Char('0'));
    return {};
}

// $XDG_RUNTIME_DIR when set and the user's alone.
QString runtimeFolder() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || !QDir::isAbsolutePath(folder)) return {};
    return whyNotPrivate(folder, true).isEmpty() ? folder : QString();
}

QString ownFolder() {
    return QDir::tempPath() + QStringLiteral("/corvantide-") + QString::number(LocalUser::Me());
}

QString socketIn(const QString& folder, QString* error) {
    const QString path = folder + u'/' + ControlSocketFolder::SocketName();
    if (QFile::encodeName(path).size() <= kLongestSocketPath) return path;
    if (error)
        *error = QStringLiteral("the socket's path %1 is longer than a local socket may have; "
                                "set TMPDIR or XDG_RUNTIME_DIR to a shorter folder")
                     .arg(path);
    return {};
}

} // namespace

namespace ControlSocketFolder {

QString SocketName() {
    const QByteArray folder = QDir(GetSettingsPath()).canonicalPath().toUtf8();
    return QStringLiteral("corvantide-") +
           QString::fromLatin1(
               QCryptographicHash::hash(folder, QCryptographicHash::Sha1).toHex().left(16));
}

QString ListeningPath(QString* error) {
    const QString runtime = runtimeFolder();
    if (!runtime.isEmpty()) return socketIn(runtime, error);
    const QString folder = ownFolder();
    if (mkdir(QFile::encodeName(folder).constData(), 0700) != 0 && errno != EEXIST) {
        if (error)
            *error =
                QStringLiteral("the folder %1 cannot be made (%2)").arg(folder, osError(errno));
        return {};
    }
    const QString why = whyNotPrivate(folder, false);
    if (why.isEmpty()) return socketIn(folder, error);
    if (error) *error = why;
    return {};
}

QStringList ConnectingPaths(QString* refusal) {
    QStringList paths;
    const QString runtime = runtimeFolder();
    if (!runtime.isEmpty()) paths.append(socketIn(runtime, nullptr));
    // A bot started without the runtime folder (another login, a service
    // manager) listens in the user's own folder.
    const QString folder = ownFolder();
    if (QFileInfo::exists(folder) || QFileInfo(folder).isSymLink()) {
        const QString why = whyNotPrivate(folder, false);
        if (why.isEmpty())
            paths.append(socketIn(folder, nullptr));
        else if (refusal)
            *refusal = why;
    }
    paths.removeAll(QString());
    return paths;
}

} // namespace ControlSocketFolder
