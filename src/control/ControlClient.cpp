#include "control/ControlClient.h"

#include "control/ControlServer.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>

namespace {

constexpr int kConnectMs = 2000;
// An import of a large file runs inside the bot; give it time.
constexpr int kAnswerMs = 60000;

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

bool SendRequest(QLocalSocket& socket, const QStringList& args) {
    socket.connectToServer(ControlServer::ChannelName());
    if (!socket.waitForConnected(kConnectMs)) return false;
    const QJsonObject request{{QStringLiteral("args"), QJsonArray::fromStringList(args)}};
    socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    socket.flush();
    return true;
}

bool SendToRunningBot(const QStringList& args, VerbResult& result) {
    QLocalSocket socket;
    if (!SendRequest(socket, args)) return false;
    QDeadlineTimer deadline(kAnswerMs);
    while (!socket.canReadLine()) {
        if (deadline.hasExpired() || socket.state() != QLocalSocket::ConnectedState ||
            !socket.waitForReadyRead(int(deadline.remainingTime()))) {
            if (socket.canReadLine()) break;
            result = VerbResult::refused(
                QStringLiteral("The Corvantide running on this home did not answer within %1 s.")
                    .arg(kAnswerMs / 1000));
            return true;
        }
    }
    result = ParseAnswer(socket.readLine());
    return true;
}

} // namespace ControlClient
