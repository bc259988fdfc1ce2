#pragma once

#include <QStringList>

// The terminal's side of `corvantide tail`: prints what the running bot
// streams (in colour on a terminal) until the bot goes or the user stops it.
// Returns the process's exit status.
int FollowRunningBot(const QStringList& args);
