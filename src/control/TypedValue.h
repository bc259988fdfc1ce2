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

// The refusal of a number the program takes only some values of, naming
// them; status 0 when the text may be stored. The key is below the
// program's root ("Settings", "Profiles\Main").
VerbResult Limit(const QString& keyBelowRoot, const QString& valueName,
                 SettingsCatalogue::Type type, const QString& text);
// A value as the terminal shows it: a number as the program uses it, a
// password hidden.
QString Shown(const QString& keyBelowRoot, const QString& valueName, const QString& text);
// Passwords are never shown nor echoed.
bool IsSecret(const QString& keyBelowRoot, const QString& valueName);

} // namespace TypedValue
