#pragma once

#include "gui/ControlPanelMemberList.h"

class QLineEdit;
class QPushButton;

// "Manage Groups:": named sets of accounts with a colour in the lists and
// chat, and the prefix a member is called by.
class ControlPanelGroups : public ControlPanelMemberList {
    Q_OBJECT
public:
    explicit ControlPanelGroups(QWidget* parent = nullptr);

    // The colour shown, as the store keeps it (red in the low byte); -1 for
    // none.
    qint32 color() const { return m_color; }
    void setColor(qint32 color);

protected:
    QStringList names() const override;
    QStringList members(const QString& name) const override;
    ManageOutcome create(const QString& name) override;
    ManageOutcome remove(const QString& name) override;
    ManageOutcome store(const QString& name, const QStringList& members) override;
    void showDetails(const QString& name) override;

private:
    void pickColor();

    QLineEdit* m_prefix;
    QPushButton* m_colorButton;
    qint32 m_color = -1;
};
