#include "gui/ControlPanelAliases.h"

#include "commands/AliasGroupEditor.h"

ControlPanelAliases::ControlPanelAliases(QWidget* parent)
    : ControlPanelMemberList({QStringLiteral("h3a"), QStringLiteral("Manage Aliases:"),
                              QStringLiteral("h3aAliases"), QStringLiteral("h3aMembers"),
                              QStringLiteral("Create Alias"),
                              QStringLiteral("Please enter a title for the new Alias!"),
                              QStringLiteral("Delete Alias?"),
                              QStringLiteral("Are you sure you want to delete this Alias?")},
                             parent) {}

QStringList ControlPanelAliases::names() const {
    return AliasGroupEditor::AliasNames();
}

QStringList ControlPanelAliases::members(const QString& name) const {
    return AliasGroupEditor::AliasMembers(name);
}

ManageOutcome ControlPanelAliases::create(const QString& name) {
    return AliasGroupEditor::NewAlias(name);
}

ManageOutcome ControlPanelAliases::remove(const QString& name) {
    return AliasGroupEditor::RemoveAlias(name);
}

ManageOutcome ControlPanelAliases::store(const QString& name, const QStringList& members) {
    return AliasGroupEditor::SaveAlias(name, members);
}
