#pragma once

#include <QString>

// The road of a line that the person at the keyboard sends to a slot: typed
// lines in the window or on the terminal, pasted ones, and the window's
// ready-made lines ("/join", "/ban", ...). Until the command interpreter
// takes this road over, a plain line is coded when Encryption is on, and
// every line is appended to the slot's send queue. Returns the line as the
// send box's history keeps it.
QString SubmitUserLine(int Index, const QString& Text);

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
