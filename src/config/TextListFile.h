#pragma once

#include "config/FileWrites.h"

#include <QString>
#include <QStringList>

// The settings folder's plain text lists (one entry a line, CR LF line ends,
// no sections): Windows-1252 text, or UTF-8 after a byte order mark.

// Creates the file empty when it is missing, as opening it for appending does.
void TouchFile(const QString& path);
// Every line of the file, without line ends; nothing for a missing file.
QStringList ReadTextLines(const QString& path);
// Replaces the file with the lines, each ended by CR LF. The file is written
// whole or not at all; on failure *cause says why.
bool WriteTextLines(const QString& path, const QStringList& lines, QString* cause = nullptr,
                    FileAccess access = FileAccess::Shared);
