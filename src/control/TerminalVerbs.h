#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// The words a person types after `corvantide` to change settings from a
// terminal: profile, config, database, import and export. The same run in a
// bot that is running on the home (it takes them over its control channel)
// and in a process of their own when no bot runs.
namespace TerminalVerbs {

bool IsVerb(const QString& word);
// `args` starts with the verb's word. Relative file names must already be
// made absolute by the caller: the bot that runs them has its own folder.
VerbResult Run(const QStringList& args);
QString Help();

} // namespace TerminalVerbs
