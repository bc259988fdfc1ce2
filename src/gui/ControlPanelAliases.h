#pragma once

#include "gui/ControlPanelMemberList.h"

// "Manage Aliases:": the names that stand for one or more accounts.
class ControlPanelAliases : public ControlPanelMemberList {
    Q_OBJECT
public:
    explicit ControlPanelAliases(QWidget* parent = nullptr);

protected:
    QStringList names() const override;
    QStringList members(const QString& name) const override;
    ManageOutcome create(const QString& name) override;
    ManageOutcome remove(const QString& name) override;
    ManageOutcome store(const QString& name, const QStringList& members) override;
};
