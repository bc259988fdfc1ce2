#pragma once

#include "control/VerbResult.h"

#include <QStringList>

class QLocalSocket;

// The terminal's side of the control channel.
namespace ControlClient {

// Hands the verb to the bot running on this home. False when no bot listens;
// true with the bot's answer otherwise (a bot that stops answering gives a
// refusal saying so).
bool SendToRunningBot(const QStringList& args, VerbResult& result);
// Connects to the bot running on this home and sends the request; false when
// no bot listens.
bool SendRequest(QLocalSocket& socket, const QStringList& args);
// The bot's one-line answer to a request.
VerbResult ParseAnswer(const QByteArray& line);

} // namespace ControlClient
