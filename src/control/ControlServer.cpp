#include "control/ControlServer.h"

#include "control/ControlSocketFolder.h"
#include "control/LocalUser.h"
#include "control/TailSubscription.h"
#include "control/TerminalVerbs.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// A request is a handful of words; anything longer is not from our client.
constexpr qint64 kLongestRequest = 256 * 1024;
// Connections the kernel holds for the bot while it is busy or out of files.
constexpr int kBacklog = 64;
// How long the bot waits for file descriptors to come free before it tries
// to take a connection again.
constexpr int kRetryMs = 1000;

QString osError(int code) {
    return QString::fromLocal8Bit(std::strerror(code));
}

QByteArray reply(const VerbResult& result) {
    const QJsonObject object{{QStringLiteral("status"), result.status},
                             {QStringLiteral("out"), result.out},
                             {QStringLiteral("err"), result.err}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

VerbResult run(const QByteArray& line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    const QJsonArray words = document.object().value(QStringLiteral("args")).toArray();
    if (!document.isObject() || words.isEmpty())
        return VerbResult::refused(QStringLiteral("The bot could not read the request."));
    QStringList args;
    for (const QJsonValue& word : words)
        args.append(word.toString());
    try {
        return TerminalVerbs::Run(args);
    } catch (const std::exception& e) {
        return VerbResult::refused(QStringLiteral("The bot failed to run the request: ") +
                                   QString::fromLocal8Bit(e.what()));
    }
}

} // namespace

ControlServer::ControlServer(QObject* parent) : QObject(parent) {}

ControlServer::~ControlServer() {
    if (m_listening < 0) return;
    delete m_notifier;
    ::close(m_listening);
    ::unlink(QFile::encodeName(m_path).constData());
}

bool ControlServer::listen(QString* error) {
    QString why;
    const QString path = ControlSocketFolder::ListeningPath(&why);
    if (path.isEmpty() || !openSocket(path, &why)) {
        if (error) *error = why;
        return false;
    }
    m_notifier = new QSocketNotifier(qintptr(m_listening), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &ControlServer::accept);
    return true;
}

bool ControlServer::openSocket(const QString& path, QString* error) {
    const QByteArray file = QFile::encodeName(path);
    if (const std::optional<uid_t> owner = LocalUser::OwnerOf(path)) {
        if (*owner != LocalUser::Me()) {
            *error = QStringLiteral("the socket %1 belongs to the user %2, not to you")
                         .arg(path, LocalUser::Name(*owner));
            return false;
        }
        // The caller holds the home's store, so a socket left under this
        // name is from a bot that ended without closing it.
        ::unlink(file.constData());
    }
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        *error = osError(errno);
        return false;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, file.constData(), size_t(file.size()));
    // The folder keeps others out already; the socket itself is the user's
    // alone as well.
    const mode_t mask = ::umask(0177);
    const bool bound =
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const int bindError = errno;
    ::umask(mask);
    if (!bound || ::listen(descriptor, kBacklog) != 0) {
        *error = QStringLiteral("%1 (%2)").arg(path, osError(bound ? errno : bindError));
        ::close(descriptor);
        return false;
    }
    m_listening = descriptor;
    m_path = path;
    return true;
}

void ControlServer::accept() {
    for (;;) {
        const int descriptor =
            ::accept4(m_listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (descriptor >= 0) {
            take(descriptor);
            continue;
        }
        if (errno == EINTR || errno == ECONNABORTED) continue;
        if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
            waitForDescriptors(errno);
            return;
        }
        // The shortage is over only once every waiting connection got in: a
        // descriptor freed now and then lets one through without ending it.
        m_starved = false;
        return;
    }
}

// Out of file descriptors the connection stays queued in the kernel; the bot
// looks again after a pause instead of losing its socket.
void ControlServer::waitForDescriptors(int code) {
    m_notifier->setEnabled(false);
    if (!m_starved)
        Q_EMIT notice(QStringLiteral("Terminal connections must wait: the bot has no file "
                                     "descriptors left (%1). It tries again every second.")
                          .arg(osError(code)));
    m_starved = true;
    QTimer::singleShot(kRetryMs, this, [this] {
        m_notifier->setEnabled(true);
        accept();
    });
}

void ControlServer::take(int descriptor) {
    if (!isOwnUser(descriptor)) return;
    if (m_open >= kMostConnections) {
        turnAway(descriptor);
        return;
    }
    auto* socket = new QLocalSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        ::close(descriptor);
        delete socket;
        return;
    }
    ++m_open;
    connect(socket, &QObject::destroyed, this, [this] {
        if (--m_open < kMostConnections) m_full = false;
    });
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    // Until a whole request is in, a quiet connection only holds a place.
    auto* idle = new QTimer(socket);
    idle->setSingleShot(true);
    connect(idle, &QTimer::timeout, socket, [socket] {
        socket->abort();
        socket->deleteLater();
    });
    idle->start(kIdleMs);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket, idle] {
        if (socket->canReadLine()) idle->stop();
        answer(socket);
    });
}

// No byte of a request is read from another user's process.
bool ControlServer::isOwnUser(int descriptor) {
    const std::optional<uid_t> peer = LocalUser::PeerOf(descriptor);
    if (peer && *peer == LocalUser::Me()) return true;
    ::close(descriptor);
    const QString who = peer ? QStringLiteral("the user ") + LocalUser::Name(*peer)
                             : QStringLiteral("a process whose user is unknown");
    Q_EMIT notice(QStringLiteral("Refused a terminal connection from %1: the bot takes settings "
                                 "commands only from its own user.")
                      .arg(who));
    return false;
}

// The refusal is left where the client reads it; a request already sent is
// read first, so that closing does not reset the connection under the answer.
void ControlServer::turnAway(int descriptor) {
    char sent[4096];
    while (::recv(descriptor, sent, sizeof sent, MSG_DONTWAIT) > 0) {
    }
    const QByteArray busy = reply(VerbResult::refused(
        QStringLiteral("The running Corvantide has %1 terminal connections open; try again in "
                       "a few seconds.")
            .arg(kMostConnections)));
    ::send(descriptor, busy.constData(), size_t(busy.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
    ::close(descriptor);
    if (!m_full)
        Q_EMIT notice(QStringLiteral("%1 terminal connections are open at once; the bot turns "
                                     "more away until some close.")
                          .arg(kMostConnections));
    m_full = true;
}

void ControlServer::answer(QLocalSocket* socket) {
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() > kLongestRequest) socket->abort();
        return;
    }
    const QByteArray line = socket->readLine(kLongestRequest);
    // A follower keeps its connection: the bot's lines stream to it.
    if (TailSubscription::Take(socket, line)) return;
    socket->write(reply(run(line)));
    socket->disconnectFromServer();
}
