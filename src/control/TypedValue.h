#pragma once

#include "config/SettingsCatalogue.h"
#include "control/VerbResult.h"

#include <QString>

// Values typed on the terminal, stored as the program reads them: a number
// value takes a number, an on/off value takes on, off, yes, no, true, false,
// 1 or 0.
namespace TypedValue {

// Writes `text` as `type` under the key (a full HKCU path). The refusal names
// the value, what it takes and what was given; a store that refuses the
// write is told as well.
VerbResult Write(const QString& key, const QString& valueName, SettingsCatalogue::Type type,
                 const QString& text);

// A number or on/off value as it is stored; false when the text is not one.
bool Parse(SettingsCatalogue::Type type, const QString& text, qint32& value);
// The refusal for a text that is not of the value's type.
VerbResult WrongType(const QString& valueName, SettingsCatalogue::Type type, const QString& text);

// The stored value as text: a number in decimal, a string as it is, binary
// data as hex. Empty and false when the value is not stored.
bool Read(const QString& key, const QString& valueName, QString& text);

} // namespace TypedValue
