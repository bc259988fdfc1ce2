#include "commands/AliasGroupEditor.h"

#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QRegularExpression>
#include <optional>

namespace {

const QString kNoBackslash = QStringLiteral("Name cannot contain backslashes.");

bool exists(const char* tree, const QString& name) {
    return RegistryWrapper::instance().KeyExists(SettingsWrapper::RootKey() + QLatin1String(tree) +
                                                 u'\\' + name);
}

// A refusal for a name that cannot be a key of its own.
std::optional<ManageOutcome> badName(const QString& name, const QStringList& members = {}) {
    if (name.isEmpty()) return ManageOutcome::refused(QStringLiteral("The name is empty."));
    if (name.contains(u'\\')) return ManageOutcome::refused(kNoBackslash);
    for (const QString& member : members) {
        if (member.contains(u'\\')) return ManageOutcome::refused(kNoBackslash);
    }
    return std::nullopt;
}

// Whether the store now holds exactly what was saved: the entry, and each
// member by its plain name.
bool holdsMembers(const char* tree, const QString& name, const QStringList& members,
                  QString (*isMember)(const QString&, const QString&)) {
    if (!exists(tree, name)) return false;
    for (const QString& member : members) {
        if (isMember(name, ConvertUsername(member, false, -1)).isEmpty()) return false;
    }
    return true;
}

QStringList withoutEmptySlot(QStringList names) {
    names.removeAll(QString());
    return names;
}

ManageOutcome created(const char* tree, const QString& name, bool existed) {
    if (!exists(tree, name)) return ManageOutcome::storeRefused(QStringLiteral("create ") + name);
    ManageOutcome outcome = ManageOutcome::done();
    outcome.existed = existed;
    AliasGroupEditor::RefreshEveryList();
    return outcome;
}

ManageOutcome removed(const char* tree, const QString& name) {
    if (exists(tree, name)) return ManageOutcome::storeRefused(QStringLiteral("delete ") + name);
    AliasGroupEditor::RefreshEveryList();
    return ManageOutcome::done();
}

} // namespace

namespace AliasGroupEditor {

void RefreshEveryList() {
    SlotTable& table = SlotTable::instance();
    RefreshAliasesAndGroups(table.CurrentIndex());
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (i != table.CurrentIndex() && table.bot(i).IsLoaded) RefreshAliasesAndGroups(i);
    }
}

QStringList SplitMembers(const QString& text) {
    QStringList members;
    for (const QString& line : text.split(QRegularExpression(QStringLiteral("\r?\n")))) {
        const QString member = line.trimmed();
        if (!member.isEmpty()) members.append(member);
    }
    return members;
}

QStringList AliasNames() {
    QStringList names;
    ListAliases(names);
    return withoutEmptySlot(names);
}

QStringList AliasMembers(const QString& alias) {
    QStringList names;
    ListAliasMembers(alias, names);
    return withoutEmptySlot(names);
}

QStringList GroupNames() {
    QStringList names;
    ListGroups(names);
    return withoutEmptySlot(names);
}

QStringList GroupMembers(const QString& group) {
    QStringList names;
    ListGroupMembers(group, names);
    return withoutEmptySlot(names);
}

ManageOutcome NewAlias(const QString& name) {
    if (auto refusal = badName(name)) return *refusal;
    const bool existed = exists("Aliases", name);
    if (!existed) CreateAlias(name, {QString()});
    return created("Aliases", name, existed);
}

ManageOutcome RemoveAlias(const QString& name) {
    DeleteAlias(name);
    return removed("Aliases", name);
}

ManageOutcome SaveAlias(const QString& name, const QStringList& members) {
    if (auto refusal = badName(name, members)) return *refusal;
    RewriteAlias(name, members);
    if (!holdsMembers("Aliases", name, members, IsAliasMember))
        return ManageOutcome::storeRefused(QStringLiteral("save the alias ") + name);
    RefreshEveryList();
    return ManageOutcome::done();
}

ManageOutcome NewGroup(const QString& name) {
    if (auto refusal = badName(name)) return *refusal;
    const bool existed = exists("Groups", name);
    if (!existed) CreateGroup(name, {QString()}, 0xFFFFFF, name);
    return created("Groups", name, existed);
}

ManageOutcome RemoveGroup(const QString& name) {
    DeleteGroup(name);
    return removed("Groups", name);
}

ManageOutcome SaveGroup(const QString& name, const QStringList& members, qint32 color,
                        const QString& prefix) {
    if (auto refusal = badName(name, members)) return *refusal;
    RewriteGroup(name, members, color, prefix);
    if (!holdsMembers("Groups", name, members, IsGroupMember) || GetGroupColor(name) != color ||
        GetGroupPrefix(name) != prefix)
        return ManageOutcome::storeRefused(QStringLiteral("save the group ") + name);
    RefreshEveryList();
    return ManageOutcome::done();
}

} // namespace AliasGroupEditor
