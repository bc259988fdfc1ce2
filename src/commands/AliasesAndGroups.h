#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

// Aliases and groups live in the settings store, for all profiles alike:
// Aliases\<alias>\<member> and Groups\<group>\<member>, each member an empty
// key named by the plain form of an account name. A group also holds its
// colour (Color, -1 for none) and the prefix its members get (Prefix).
// FindAlias and FindGroup answer from an index of the members that the
// store's next write throws away, so a change shows in the next chat line.
//
// A name list is as the store enumerates it: indexed from 0, and with one
// empty slot when there is nothing to list. The List functions return its
// highest index, or -1 when the key cannot be read.

int ListAliases(QStringList& Names);
int ListAliasMembers(const QString& Alias, QStringList& Names);
// The first alias, in the store's order, that has the member; empty if none.
QString FindAlias(const QString& Name);
// Alias when it has the member, else empty.
QString IsAliasMember(const QString& Alias, const QString& Name);
void CreateAlias(const QString& Alias, const QStringList& Members);
// False when the members could not be listed; then nothing changes.
bool DeleteAlias(const QString& Alias);
void RewriteAlias(const QString& Alias, const QStringList& Members);
void AddAliasMember(const QString& Alias, const QString& Name);
void RemoveAliasMember(const QString& Alias, const QString& Name);

int ListGroups(QStringList& Names);
int ListGroupMembers(const QString& Group, QStringList& Names);
QString FindGroup(const QString& Name);
QString IsGroupMember(const QString& Group, const QString& Name);
void CreateGroup(const QString& Group, const QStringList& Members, qint32 Color,
                 const QString& Prefix);
bool DeleteGroup(const QString& Group);
void RewriteGroup(const QString& Group, const QStringList& Members, qint32 Color,
                  const QString& Prefix);
void AddGroupMember(const QString& Group, const QString& Name);
void RemoveGroupMember(const QString& Group, const QString& Name);
// The group's colour, or -1 when it has none.
qint32 GetGroupColor(const QString& Group);
// The group's prefix; the group's own name when it has no Prefix value.
QString GetGroupPrefix(const QString& Group);

// Recolours the user list of the profile, renames its items after their
// aliases, and asks the window to rebuild the alias and group menus.
void RefreshAliasesAndGroups(int Index);

// Tells the window to rebuild its alias and group menus from ListAliases and
// ListGroups.
class AliasEvents : public QObject {
    Q_OBJECT
public:
    static AliasEvents& instance();

Q_SIGNALS:
    void menusChanged();
};
