#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// `corvantide database ...`: the userbase jobs in one line each: make and
// remove a database, give a user a rank, bind a database to a profile.
VerbResult RunDatabaseVerb(const QStringList& args);
QString DatabaseVerbsHelp();
