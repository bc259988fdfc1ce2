#pragma once

#include "control/VerbResult.h"

#include <QStringList>

#include <memory>

class QLocalSocket;

// The terminal's side of the control channel.
namespace ControlClient {

// A connection to the bot running on this home, made only once the socket
// and the process listening on it are known to be this user's. Null when no
// bot listens; null with `refusal` set when another user's socket or process
// stands where the bot's should be (nothing was sent to it). `whyNoBot` gets
// the reason a place the bot may listen in was not looked at.
std::unique_ptr<QLocalSocket> ConnectToRunningBot(QString* refusal, QString* whyNoBot = nullptr);

// Hands the verb to the bot running on this home. False when no bot listens
// (with `whyNoBot` as above); true with the bot's answer otherwise (a bot
// that stops answering, or another user's socket, gives a refusal saying so).
bool SendToRunningBot(const QStringList& args, VerbResult& result, QString* whyNoBot = nullptr);

// One request as the bot reads it (one JSON line {"args": [...]}), and its
// one-line answer read back.
void WriteRequest(QLocalSocket& socket, const QStringList& args);
VerbResult ParseAnswer(const QByteArray& line);

} // namespace ControlClient
