#pragma once

#include "commands/TextEntryFile.h"

// Word definitions in Definitions.ini, shared by all profiles.
class DefinitionWrapper : public TextEntryFile {
public:
    DefinitionWrapper();
};
