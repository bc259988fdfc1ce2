#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// `corvantide profile ...`: list, show, new, clone, rename, delete, set, get.
// `args` are the words after "profile".
VerbResult RunProfileVerb(const QStringList& args);
QString ProfileVerbsHelp();
