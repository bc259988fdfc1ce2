#pragma once

#include <QString>
#include <QStringList>

// Reading and writing section-and-key .ini files with the behaviour of the
// Windows profile functions, and the small file-system questions the rest of
// the program asks. None of these report errors: a failed read gives the empty
// text, the default or False.

// The value of Key in Section, at most 255 characters. A missing file gives
// the empty text and *found false, without the default; a missing section or
// key in an existing file gives the default.
QString ReadIni(const QString& file, const QString& section, const QString& key,
                const QString& defaultValue = {}, bool* found = nullptr);
// The number at the start of the value; the default when the value is empty.
qint32 ReadIniNumber(const QString& file, const QString& section, const QString& key,
                     qint32 defaultValue);
// Every key of the section, each followed by a NUL, cut to what a 4096-byte
// listing buffer holds.
QString ReadIniKeys(const QString& file, const QString& section);
// Sets the key, creating file, section and key as needed; the file is replaced
// as a whole, so a crash leaves the old or the new file, never half of one.
bool WriteIni(const QString& file, const QString& section, const QString& key,
              const QString& value);

// Bare names of the files that match a path with wildcards, in name order;
// one empty name when nothing matches.
QStringList ListFiles(const QString& pattern);
// With a file: whether its folder holds a file of that name in any case; the
// folder argument is then ignored. With a folder only: whether it can be listed.
bool PathExists(const QString& file, const QString& folder = {});
QString TrimNull(const QString& text);

// The number at the start of a text, as a typed number is taken: leading
// blanks, a sign, digits and a fraction, rounded to the nearest 32-bit
// integer (halves to even); 0 when no number starts the text.
qint32 LeadingNumber(QStringView text);
