#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

// The lines of a REGEDIT4 file as regedit writes and reads them: names and
// texts in double quotes with backslash and quote escaped inside, "@" for a
// key's default value, dword:, hex: and hex(N): data, "-" for a removal, and
// hex data carried over several lines by a trailing backslash.
namespace regtext {

// The value types the settings keep, by their registry numbers.
constexpr int kString = 1;
constexpr int kBinary = 3;
constexpr int kDword = 4;

// `"text"` with `\` and `"` escaped.
QString quoted(QStringView text);
// A value line for a string, binary or dword value. A string with a control
// character goes out as hex(1): bytes and a closing NUL, since a quoted text
// cannot hold a line break.
QString valueLine(const QString& name, int type, const QByteArray& data, qint32 dword);

// A value line read back.
struct Value {
    QString name; // empty for the default value
    bool remove = false;
    int type = kString;
    QByteArray data; // the bytes of a string or binary value
    qint32 dword = 0;
    QString warning; // stored, but not as written (say so)
};

// Where the data of a value line starts, behind the name and "="; -1 when
// the line has no readable name (the reason is in `error`).
qsizetype dataStart(QStringView line, QString& name, QString& error);
// True when the data is hex carried on to the next line.
bool continues(QStringView data);
// Reads the data of a value line; false with the reason when it can't be read.
bool readData(QStringView data, Value& value, QString& error);

// Control characters as \xNN, so that a note about a line stays one whole
// line on any terminal.
QString visible(QStringView text);

} // namespace regtext
