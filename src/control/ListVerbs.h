#pragma once

#include "control/VerbResult.h"

#include <QStringList>

// `corvantide filter|block|macro|alias|group ...`: the lists the control
// panel's Manage pages keep, one change a line, through the same code as
// those pages, so a running bot that takes the verb uses the change at once.
namespace ListVerbs {

bool IsVerb(const QString& word);
// `args` starts with the verb's word.
VerbResult Run(const QStringList& args);
QString Help();

} // namespace ListVerbs
