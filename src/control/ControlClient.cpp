#include "control/ControlClient.h"

#include "control/ControlSocketFolder.h"
#include "control/LocalUser.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>

namespace {

constexpr int kConnectMs = 2000;
// An import of a large file runs inside the bot; give it time.
constexpr int kAnswerMs = 60000;

QString notYours(const QString& what, const QString& path, uid_t owner) {
    return QStringLiteral("%1 %2 belongs to the user %3, not to you; nothing was sent to it.")
        .arg(what, path, LocalUser::Name(owner));
}

} // namespace

namespace ControlClient {

VerbResult ParseAnswer(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (object.isEmpty())
        return VerbResult::refused(QStringLiteral("The running Corvantide gave an answer that "
                                                  "could not be read."));
    return {object.value(QStringLiteral("status")).toInt(1),
            object.value(QStringLiteral("out")).toString(),
            object.value(QStringLiteral("err")).toString()};
}

void WriteRequest(QLocalSocket& socket, const QStringList& args) {
    const QJsonObject request{{QStringLiteral("args"), QJsonArray::fromStringList(args)}};
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
}

std::unique_ptr<QLocalSocket> ConnectToRunningBot(QString* refusal, QString* whyNoBot) {
    for (const QString& path : ControlSocketFolder::ConnectingPaths(whyNoBot)) {
        const std::optional<uid_t> owner = LocalUser::OwnerOf(path);
        if (!owner) continue;
        if (*owner != LocalUser::Me()) {
            *refusal = notYours(QStringLiteral("The control socket"), path, *owner);
            return nullptr;
        }
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(path);
        // A socket left by a bot that ended refuses the connection.
        if (!socket->waitForConnected(kConnectMs)) continue;
        const std::optional<uid_t> peer = LocalUser::PeerOf(socket->socketDescriptor());
        if (!peer || *peer != LocalUser::Me()) {
            socket->abort();
            *refusal = peer ? notYours(QStringLiteral("The program listening on"), path, *peer)
                            : QStringLiteral("The program listening on %1 cannot be told apart "
                                             "from another user's; nothing was sent to it.")
                                  .arg(path);
            return nullptr;
        }
        return socket;
    }
    return nullptr;
}

bool SendToRunningBot(const QStringList& args, VerbResult& result, QString* whyNoBot) {
    QString refusal;
    const std::unique_ptr<QLocalSocket> socket = ConnectToRunningBot(&refusal, whyNoBot);
    if (!refusal.isEmpty()) {
        result = VerbResult::refused(refusal);
        return true;
    }
    if (!socket) return false;
    WriteRequest(*socket, args);
    QDeadlineTimer deadline(kAnswerMs);
    while (!socket->canReadLine()) {
        if (socket->state() != QLocalSocket::ConnectedState) {
            result = VerbResult::refused(
                QStringLiteral("The Corvantide running on this home closed the connection "
                               "without an answer; it may have too many terminal connections "
                               "open. Try again in a few seconds."));
            return true;
        }
        if (deadline.hasExpired() || !socket->waitForReadyRead(int(deadline.remainingTime()))) {
            if (socket->canReadLine() || socket->state() != QLocalSocket::ConnectedState) continue;
            result = VerbResult::refused(
                QStringLiteral("The Corvantide running on this home did not answer within %1 s.")
                    .arg(kAnswerMs / 1000));
            return true;
        }
    }
    result = ParseAnswer(socket->readLine());
    return true;
}

} // namespace ControlClient
