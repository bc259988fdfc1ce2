#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// `corvantide plugin ...`: the plug-ins of the Plugins folder in one line
// each: list them, start and stop them in the running bot, and choose which
// load when the bot starts (Plugins.ini).
VerbResult RunPluginVerb(const QStringList& args);
QString PluginVerbsHelp();
