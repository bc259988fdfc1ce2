#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// The terminal's side of the control channel.
namespace ControlClient {

// Hands the verb to the bot running on this home. False when no bot listens;
// true with the bot's answer otherwise (a bot that stops answering gives a
// refusal saying so).
bool SendToRunningBot(const QStringList& args, VerbResult& result);

} // namespace ControlClient
