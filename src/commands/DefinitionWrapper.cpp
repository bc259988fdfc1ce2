#include "commands/DefinitionWrapper.h"

DefinitionWrapper::DefinitionWrapper()
    : TextEntryFile(QStringLiteral("Definitions.ini"), QStringLiteral("Definitions"),
                    QStringLiteral("There are no definitions created yet.")) {}
