#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// The words that steer a running bot: what its profiles do now rather than
// what is stored. They come from another terminal over the control channel
// (`corvantide status`) and from the bot's own terminal behind "//"
// (`//status`), and run the same code as the window's menus. A process that is
// not the running bot refuses them.
namespace SteeringVerbs {

bool IsVerb(const QString& word);
// `args` starts with the verb's word.
VerbResult Run(const QStringList& args);
// Their lines for `corvantide --help`.
QString Help();
// The headless terminal's own commands, for `corvantide commands` and //help.
QString TerminalHelp();
// The words a typed line may start with on the headless terminal (for
// completion).
QStringList TerminalWords();

} // namespace SteeringVerbs
