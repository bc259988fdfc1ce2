#pragma once

#include <QString>

// A line from the keyboard for a slot: typed, pasted, or one of the window's
// ready-made lines ("/join", "/ban", ...). A slash line is first offered to
// the bot's commands with full rights; what they do not take, and all talk
// (coded when Encryption is on), goes on the slot's send queue. Returns the
// line as the send box's history keeps it.
QString SendUserLine(int Index, const QString& Text);

// The one way a command's reply leaves: onto the slot's send queue, and so to
// the channel, or, for the keyboard, into the slot's chat view in `Colour`
// (24-bit, red in the low byte).
void SendCommandReply(int Index, bool FromConsole, const QString& Text, quint32 Colour = 0x00FFFF);

// The last stop of a line before the wire: client-side slash commands,
// whisper rewriting for Diablo II realms, and packet 0x0E for the rest.
void SendChatLine(int Index, QString Text);

// The chat codec some channels use: letters and digits moved to high codes,
// behind the marker 171.
void EncryptChat(QString& Text);
void DecryptChat(QString& Text);
