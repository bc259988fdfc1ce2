#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// `corvantide config ...`: get, set, list and delete over the settings tree.
// Keys are written below the program's root ("Settings",
// "Databases\Main\alice") or as a full "HKCU\..." path.
VerbResult RunConfigVerb(const QStringList& args);
QString ConfigVerbsHelp();
