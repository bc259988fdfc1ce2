#include "control/WebToken.h"

#include "config/Folders.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <openssl/crypto.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

QString readToken(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    // A file loosened by hand is made private again before it is trusted.
    if (file.permissions() & (QFileDevice::ReadGroup | QFileDevice::ReadOther |
                              QFileDevice::WriteGroup | QFileDevice::WriteOther))
        ::chmod(QFile::encodeName(path).constData(), 0600);
    return QString::fromLatin1(file.readAll()).trimmed();
}

QString newToken() {
    QByteArray bytes(32, Qt::Uninitialized);
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32*>(bytes.data()),
                                          bytes.size() / 4);
    return QString::fromLatin1(
        bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

// Written to a private file beside the final one and renamed over it, so a
// reader sees either no token or the whole one.
bool writeToken(const QString& path, const QString& token, QString* error) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    const QByteArray temporary = QFile::encodeName(path + QStringLiteral(".new"));
    const int fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        if (error) *error = QStringLiteral("Could not write %1: %2.").arg(path, systemError());
        return false;
    }
    const QByteArray text = token.toLatin1() + '\n';
    const bool written = ::write(fd, text.constData(), size_t(text.size())) == text.size() &&
                         ::fsync(fd) == 0;
    const QString cause = systemError();
    ::close(fd);
    if (!written || ::rename(temporary.constData(), QFile::encodeName(path).constData()) != 0) {
        if (error)
            *error = QStringLiteral("Could not write %1: %2.").arg(path, written ? systemError() : cause);
        ::unlink(temporary.constData());
        return false;
    }
    return true;
}

} // namespace

namespace WebToken {

QString FilePath() {
    return QDir(GetSettingsPath()).filePath(QStringLiteral("WebToken"));
}

QString Ensure(QString* error) {
    const QString path = FilePath();
    const QString stored = readToken(path);
    if (!stored.isEmpty()) return stored;
    const QString token = newToken();
    return writeToken(path, token, error) ? token : QString();
}

bool Matches(const QByteArray& offered, const QByteArray& expected) {
    // Digests of equal length, so neither the length nor the first
    // difference of the offered text shows in the time taken.
    const QByteArray a = QCryptographicHash::hash(offered, QCryptographicHash::Sha256);
    const QByteArray b = QCryptographicHash::hash(expected, QCryptographicHash::Sha256);
    return !expected.isEmpty() && CRYPTO_memcmp(a.constData(), b.constData(), size_t(a.size())) == 0;
}

} // namespace WebToken
