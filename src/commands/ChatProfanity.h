#pragma once

#include <QString>

// The profanity table of Profanity.ini as the chat views apply it to what
// people say (talk, emotes, whispers both ways, the bot's own lines):
// "Censor profanity" puts the table's words for the plain ones, "Uncensor
// profanity" the plain words back for the table's, so with both on the plain
// text shows. Only what is shown changes: the server, commands and scripts
// get the text as it was said. The table is read again only when the file
// changed since the last read.
QString ShownWithProfanitySettings(const QString& Text);
