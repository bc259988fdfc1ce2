#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

// Small conversions from numbers, times and bytes to what a user reads.

// "dd|hh:mm:ss" from milliseconds.
QString FormatUptime(qint64 ms);
// "d days, h hours, m minutes."; "Unavailable" for 0. The seconds are used up.
QString FormatSeconds(qint64& seconds);
// Two decimal halves "high low" of a Windows file time, as the server sends them.
qint64 ParseFileTime(const QString& text);
// "Weekday, Month d, yyyy h:mm:ss AM" in the system's language.
QString FormatSystemTime(const QDateTime& t);
// Chat text that came as UTF-8 bytes read one character per byte; text that
// is not valid UTF-8 is left as it came.
QString DecodeUTF8(const QString& text);
// 16 bytes a line: hexadecimal columns, two blanks, the printable characters.
QString HexDump(const QByteArray& bytes);
// The nine characters a file name cannot hold become "_".
QString SafeFileName(const QString& text);
