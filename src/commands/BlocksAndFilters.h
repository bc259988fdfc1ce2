#pragma once

#include <QString>
#include <QStringList>

// Two program-wide lists hold lines back before anything else looks at them:
// the blocked users (BlockedUsers.ini) and the message filters
// (MessageFilters.ini), plain text lists in the settings folder, held in
// memory for all profiles alike. Each list has at least one slot; an empty
// list has one empty slot. Entries are patterns where only '*' is a wildcard.
// A list whose file was changed on disk since it was loaded (by hand, say) is
// loaded again on its next use.

// Whether the whole text matches the whole pattern, without regard to case.
// '*' matches any run of characters; every other character stands for itself,
// except that a \u00A7 stands for '[' and a \u00A8 for ']'.
bool MatchesPattern(const QString& Text, const QString& Pattern);

const QStringList& BlockedUsers();
void LoadBlocks();
// Writes the list to its file; false, with the cause, when the file kept the
// old list.
bool SaveBlocks(QString* cause = nullptr);
// True when the name went onto the list; false when it was there already
// (compared as plain text, '*' included), or when the list could not be
// saved: then *cause says why, and the list is as it was.
bool AddBlock(const QString& Name, QString* cause = nullptr);
// True when an entry equal to the name was removed; false as for AddBlock.
bool RemoveBlock(const QString& Name, QString* cause = nullptr);
// Whether the name, cut at its first '#', matches an entry.
bool IsBlocked(const QString& Name);
// The control panel's save: the lines replace the file whole, the list is
// loaded from it and the user lists take their colours again. False when the
// file could not be written; the list is then what the file still holds.
bool ReplaceBlockedUsersFile(const QStringList& lines);

const QStringList& MessageFilters();
// Only lines that hold a '*' are filters; the rest are skipped.
void LoadFilters();
bool IsFiltered(const QString& Text);
// The control panel's save: the lines replace the file whole and the list is
// loaded from it. False, with the cause, when the file could not be written.
bool ReplaceMessageFiltersFile(const QStringList& lines, QString* cause = nullptr);

// The files, in the settings folder.
QString BlockedUsersFile();
QString MessageFiltersFile();
