#pragma once

#include "gui/ControlPanelPage.h"

struct ManageOutcome;
class QLineEdit;
class QListWidget;
class QTreeWidget;

// "Manage Databases:": the userbases, which loaded profiles use the chosen
// one, and its users with their ranks. Every change goes to the store at
// once, except the binding, which waits for "Save".
class ControlPanelDatabases : public ControlPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelDatabases(QWidget* parent = nullptr);

    void load() override;
    // Binds the chosen database to the ticked profiles.
    bool save() override;

    QString selectedDatabase() const;

private:
    void showDatabase();
    void fillBots(const QString& database);
    void fillUsers(const QString& database);
    void newDatabase();
    void deleteDatabase();
    void addUser();
    void deleteUser();
    // Shows a refusal; true when there was none.
    bool accepted(const ManageOutcome& outcome);

    QListWidget* m_databases;
    QListWidget* m_bots;
    QTreeWidget* m_users;
    QLineEdit* m_username;
    QLineEdit* m_flags;
};
