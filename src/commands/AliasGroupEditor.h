#pragma once

#include "commands/ManageOutcome.h"

#include <QString>
#include <QStringList>

// What the alias and group editors do to the store: make, remove and rewrite
// an alias or a group, each save checked by reading the store back. A save
// refreshes the user lists and menus at once, so the running bot shows the
// change without a restart.
namespace AliasGroupEditor {

// Renames and recolours the items of every loaded slot's user list after the
// aliases and groups, the slot on screen first, and rebuilds the menus. Not
// only the slot on screen: a tab switched to later shows no stale name.
void RefreshEveryList();

// The members typed one a line (CR LF or LF); blank lines are no members.
QStringList SplitMembers(const QString& text);

// The names and members as the store lists them, without the empty slot of an
// empty list.
QStringList AliasNames();
QStringList AliasMembers(const QString& alias);
QStringList GroupNames();
QStringList GroupMembers(const QString& group);

// A new alias with no member.
ManageOutcome NewAlias(const QString& name);
ManageOutcome RemoveAlias(const QString& name);
// Replaces the alias's members.
ManageOutcome SaveAlias(const QString& name, const QStringList& members);

// A new group: white, its own name as prefix, no member.
ManageOutcome NewGroup(const QString& name);
ManageOutcome RemoveGroup(const QString& name);
// Replaces the group's members, colour and prefix.
ManageOutcome SaveGroup(const QString& name, const QStringList& members, qint32 color,
                        const QString& prefix);

} // namespace AliasGroupEditor
