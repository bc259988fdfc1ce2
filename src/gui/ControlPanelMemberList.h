#pragma once

#include "gui/ControlPanelPage.h"

#include <QStringList>

struct ManageOutcome;
class QListWidget;
class QPlainTextEdit;
class QVBoxLayout;

// A page of named entries that each hold members, one a line: the aliases
// and the groups. Choosing an entry shows its members; Save stores the
// members of the chosen entry and refreshes the slot on screen.
class ControlPanelMemberList : public ControlPanelPage {
    Q_OBJECT
public:
    // The words of one such page and the names of its controls.
    struct Texts {
        QString page;    // "h3a"
        QString heading; // "Manage Aliases:"
        QString list;    // "h3aAliases"
        QString members; // "h3aMembers"
        QString createTitle;
        QString createText;
        QString deleteTitle;
        QString deleteText;
    };

    ControlPanelMemberList(const Texts& texts, QWidget* parent);

    void load() override;
    bool save() override;

    QString selectedName() const;
    // Chooses an entry by name; false when the list has none of that name.
    bool select(const QString& name);

protected:
    virtual QStringList names() const = 0;
    virtual QStringList members(const QString& name) const = 0;
    virtual ManageOutcome create(const QString& name) = 0;
    virtual ManageOutcome remove(const QString& name) = 0;
    virtual ManageOutcome store(const QString& name, const QStringList& members) = 0;
    // Shows what else the page holds for the chosen entry (empty for none).
    virtual void showDetails(const QString&) {}

    // Where a page puts the controls of its own, below the members.
    QVBoxLayout* details() const { return m_details; }
    bool accepted(const ManageOutcome& outcome);

private:
    void showSelected();
    void createEntry();
    void removeEntry();

    Texts m_texts;
    QListWidget* m_list;
    QPlainTextEdit* m_members;
    QVBoxLayout* m_details;
};
