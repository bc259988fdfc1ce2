#pragma once

#include <QList>
#include <QString>

// The number settings the program takes only a few values of, and what it
// makes of any other: a value typed on the terminal is held to them, and a
// value read is shown as the program uses it.
namespace SettingLimits {

// The values a number may take, for a value of the key (a path below the
// program's root, such as "Settings" or "Profiles\Main"); empty when any
// number does.
QList<qint32> Choices(const QString& keyBelowRoot, const QString& valueName);
// "20, 40, 60, 80 or 100".
QString ChoicesText(const QList<qint32>& choices);
// A stored number as the program uses it: outside the choices, the default.
QString AsUsed(const QString& keyBelowRoot, const QString& valueName, const QString& stored);

} // namespace SettingLimits
