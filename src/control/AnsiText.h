#pragma once

#include "platform/ChatDocument.h"

#include <QByteArray>
#include <vector>

// A line of a chat view as a terminal prints it: each run in its colour and
// style as ANSI escapes (24-bit colour) when `colour` is on, plain UTF-8
// otherwise; the prefix uncoloured; ended by a line feed. Control
// characters print as "?".
QByteArray AnsiLine(const QByteArray& prefix, const std::vector<TextRun>& runs, bool colour);
