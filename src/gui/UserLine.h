#pragma once

#include <QString>

// The road of a line that the person at the keyboard sends to a slot: the
// typed lines, the pasted ones and the window's ready-made lines ("/join",
// "/ban", ...). Until the command interpreter takes this road over, a plain
// line is coded when Encryption is on, and every line is appended to the
// slot's send queue. Returns the line as the send box's history keeps it.
QString SubmitUserLine(int Index, const QString& Text);
