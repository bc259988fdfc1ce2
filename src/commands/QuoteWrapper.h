#pragma once

#include "commands/TextEntryFile.h"

// Quotes in Quotes.ini, shared by all profiles.
class QuoteWrapper : public TextEntryFile {
public:
    QuoteWrapper();

    // The text of a line drawn at random, untrimmed; every line that counts
    // has the same chance, whatever its ID. "Unable to get a random quote."
    // when no line counts.
    QString GetRandom();
};
