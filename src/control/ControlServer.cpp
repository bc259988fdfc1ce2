#include "control/ControlServer.h"

#include "config/Folders.h"
#include "control/TailSubscription.h"
#include "control/TerminalVerbs.h"

#include <QCryptographicHash>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

// A request is a handful of words; anything longer is not from our client.
constexpr qint64 kLongestRequest = 256 * 1024;

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

ControlServer::ControlServer(QObject* parent) : QObject(parent), m_server(new QLocalServer(this)) {
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, &ControlServer::accept);
}

ControlServer::~ControlServer() {
    m_server->close();
}

QString ControlServer::ChannelName() {
    const QByteArray folder = QDir(GetSettingsPath()).canonicalPath().toUtf8();
    return QStringLiteral("corvantide-") +
           QString::fromLatin1(
               QCryptographicHash::hash(folder, QCryptographicHash::Sha1).toHex().left(16));
}

bool ControlServer::listen(QString* error) {
    const QString name = ChannelName();
    if (m_server->listen(name)) return true;
    // The caller holds the home's store, so a socket left with this name is
    // from a bot that ended without closing it.
    QLocalServer::removeServer(name);
    if (m_server->listen(name)) return true;
    if (error) *error = m_server->errorString();
    return false;
}

void ControlServer::accept() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { answer(socket); });
    }
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
