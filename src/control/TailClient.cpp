#include "control/TailClient.h"

#include "control/AnsiText.h"
#include "control/ControlClient.h"
#include "control/FeedMessages.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <cstdio>
#include <unistd.h>

namespace {

void print(const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
}

// Prints one streamed message; false with `status` set for the bot's answer,
// which ends the stream (a refusal).
bool show(const QByteArray& json, bool colour, int& status) {
    if (QJsonDocument::fromJson(json).object().contains(QStringLiteral("status"))) {
        const VerbResult answer = ControlClient::ParseAnswer(json);
        std::fputs(answer.out.toLocal8Bit().constData(), stdout);
        std::fputs(answer.err.toLocal8Bit().constData(), stderr);
        status = answer.status;
        return false;
    }
    const FeedMessages::Message m = FeedMessages::Read(json);
    switch (m.kind) {
    case FeedMessages::Message::Line:
        print(AnsiLine({}, m.runs, colour));
        break;
    case FeedMessages::Message::Skipped:
        print("... " + QByteArray::number(m.lines) + " lines skipped\n");
        break;
    case FeedMessages::Message::Notice:
        print("-- " + m.text.toUtf8() + '\n');
        break;
    case FeedMessages::Message::Unknown:
        break;
    }
    return true;
}

} // namespace

int FollowRunningBot(const QStringList& args) {
    QString refusal;
    const std::unique_ptr<QLocalSocket> connection = ControlClient::ConnectToRunningBot(&refusal);
    if (!connection) {
        std::fprintf(stderr, "%s\n",
                     refusal.isEmpty()
                         ? "No Corvantide runs on this home; there is nothing to follow."
                         : qPrintable(refusal));
        return 1;
    }
    QLocalSocket& socket = *connection;
    ControlClient::WriteRequest(socket, args);
    const bool colour = isatty(STDOUT_FILENO) != 0;
    int status = 0;
    for (;;) {
        while (socket.canReadLine()) {
            if (!show(socket.readLine(), colour, status)) return status;
        }
        std::fflush(stdout);
        if (socket.state() != QLocalSocket::ConnectedState) break;
        socket.waitForReadyRead(-1);
    }
    std::fputs("-- The bot stopped; nothing more to follow.\n", stderr);
    return 0;
}
