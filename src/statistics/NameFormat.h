#pragma once

#include <QString>

// "0x" and the value in upper-case hexadecimal, at least `Width` digits.
QString FormatHex(quint32 Value, int Width);
// Joins Text to Target behind Separator; an empty Target just becomes Text.
void AppendWithSeparator(QString& Target, const QString& Text, const QString& Separator);
