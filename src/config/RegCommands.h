#pragma once

#include <QString>

class QTextStream;
class RegistryWrapper;

// The command-line form of the store's export and import: create profiles
// from a script, back settings up. Each prints one line, on `out` when it
// worked and on `err` when not, and returns the process exit code (0 or 1).
// The running program holds its store, so these work while it is closed.
int ImportRegCommand(RegistryWrapper& store, const QString& file, QTextStream& out,
                     QTextStream& err);
// Exports KEY and everything below it; an existing FILE is left alone.
int ExportRegCommand(RegistryWrapper& store, const QString& key, const QString& file,
                     QTextStream& out, QTextStream& err);
