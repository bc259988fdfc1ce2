#pragma once

#include <QString>

// A statstring is the text Battle.net gives for each user in a channel: the
// product code written backward ("RATS" for StarCraft), then that product's
// record. These turn it into words.

// The product's display name, and with `Detailed` its record in brackets.
// For WarCraft III a clan tag found in the statstring is written to `Clan`,
// which is left alone otherwise.
QString ParseStatstring(const QString& Statstring, bool Detailed, QString& Clan);
QString ParseStatstring(const QString& Statstring, bool Detailed);
// The bracket of a Diablo II statstring: the character, or an open one.
QString ParseDiabloStats(const QString& Statstring);
// The display name of a product code ("STAR"), from Overrides.ini or the
// built-in names.
QString GetProductName(const QString& Code);
// The name of a WarCraft III icon text: tier digit, then race letter.
QString GetWarcraftIconName(const QString& Code, const QString& IconText);
