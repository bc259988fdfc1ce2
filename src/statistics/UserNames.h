#pragma once

#include <QString>

// Diablo II realm names read "character*account", and the server also takes
// "*account" for a bare account. The plain form of a name is the account
// alone; towards the server a name takes the star form on Diablo II profiles.
// `Index` is a profile slot whose product decides, or -1 for the star form.
QString ConvertUsername(const QString& Name, bool ToServer, int Index);

// The form of a name for the screen: the alias of its plain form if it has
// one; else, with HideChars on, the plain form; else the name as it came.
QString GetDisplayName(const QString& Name);
