#include "control/LocalUser.h"

#include <QFile>

#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LocalUser {

uid_t Me() {
    return geteuid();
}

QString Name(uid_t uid) {
    const passwd* entry = getpwuid(uid);
    if (entry && entry->pw_name) return QString::fromLocal8Bit(entry->pw_name);
    return QStringLiteral("uid %1").arg(uid);
}

std::optional<uid_t> OwnerOf(const QString& path) {
    struct stat facts {};
    if (lstat(QFile::encodeName(path).constData(), &facts) != 0) return std::nullopt;
    return facts.st_uid;
}

std::optional<uid_t> PeerOf(qintptr descriptor) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(int(descriptor), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 ||
        size != sizeof peer)
        return std::nullopt;
    return peer.uid;
}

} // namespace LocalUser
