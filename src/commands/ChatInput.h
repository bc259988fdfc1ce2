#pragma once

#include <QString>

// The last stop of a line before the wire: client-side slash commands,
// whisper rewriting for Diablo II realms, and packet 0x0E for the rest.
void SendChatLine(int Index, QString Text);

// The chat codec some channels use: letters and digits moved to high codes,
// behind the marker 171.
void EncryptChat(QString& Text);
void DecryptChat(QString& Text);
