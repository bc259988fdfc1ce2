#include "gui/ControlPanelDatabases.h"

#include "chat/BotElement.h"
#include "commands/DatabaseManager.h"
#include "config/FileHandler.h"
#include "gui/PanelHelpers.h"
#include "session/SlotTable.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString kTitle = QStringLiteral("Manage Databases");

QPushButton* button(const QString& text, const char* name) {
    auto* b = new QPushButton(text);
    b->setObjectName(QLatin1String(name));
    return b;
}

} // namespace

ControlPanelDatabases::ControlPanelDatabases(QWidget* parent) : ControlPanelPage(parent) {
    setObjectName(QStringLiteral("h3c"));
    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Manage Databases:")), 0, 0, 1, 3);

    m_databases = new QListWidget;
    m_databases->setObjectName(QStringLiteral("h3cDatabase"));
    auto* databaseButtons = new QHBoxLayout;
    QPushButton* create = button(QStringLiteral("&New"), "h3cNew");
    QPushButton* remove = button(QStringLiteral("&Delete"), "h3cDelete");
    databaseButtons->addWidget(create);
    databaseButtons->addWidget(remove);
    auto* databaseColumn = new QVBoxLayout;
    databaseColumn->addWidget(new QLabel(QStringLiteral("Databases:")));
    databaseColumn->addWidget(m_databases, 1);
    databaseColumn->addLayout(databaseButtons);
    layout->addLayout(databaseColumn, 1, 0);

    m_bots = new QListWidget;
    m_bots->setObjectName(QStringLiteral("h3cBots"));
    auto* note = new QLabel(
        QStringLiteral("Check which bots you want to use this database then click \"Save\""));
    note->setWordWrap(true);
    // No accelerator: Alt+S belongs to the control panel's own Save, which
    // binds as well.
    QPushButton* bind = button(QStringLiteral("Save"), "h3cBind");
    auto* botColumn = new QVBoxLayout;
    botColumn->addWidget(new QLabel(QStringLiteral("Bots:")));
    botColumn->addWidget(m_bots, 1);
    botColumn->addWidget(note);
    botColumn->addWidget(bind);
    layout->addLayout(botColumn, 1, 1);

    m_users = new QTreeWidget;
    m_users->setObjectName(QStringLiteral("h3cUsers"));
    m_users->setHeaderLabels({QStringLiteral("Username"), QStringLiteral("Flags")});
    m_users->setRootIsDecorated(false);
    m_users->header()->setStretchLastSection(false);
    m_users->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_users->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_username = new QLineEdit;
    m_username->setObjectName(QStringLiteral("h3cUsername"));
    m_username->setPlaceholderText(QStringLiteral("Username"));
    m_flags = new QLineEdit;
    m_flags->setObjectName(QStringLiteral("h3cFlags"));
    m_flags->setPlaceholderText(QStringLiteral("Flags"));
    m_flags->setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("Flags")) + 24);
    QPushButton* addUser = button(QStringLiteral("&Add"), "h3cAddUser");
    QPushButton* removeUser = button(QStringLiteral("&Remove"), "h3cRemoveUser");
    auto* userEntry = new QHBoxLayout;
    userEntry->addWidget(m_username, 1);
    userEntry->addWidget(m_flags);
    auto* userColumn = new QVBoxLayout;
    userColumn->addWidget(new QLabel(QStringLiteral("Users:")));
    userColumn->addWidget(m_users, 1);
    userColumn->addLayout(userEntry);
    auto* userButtons = new QHBoxLayout;
    userButtons->addWidget(addUser);
    userButtons->addWidget(removeUser);
    userColumn->addLayout(userButtons);
    layout->addLayout(userColumn, 1, 2);
    layout->setColumnStretch(0, 2);
    layout->setColumnStretch(1, 2);
    layout->setColumnStretch(2, 3);

    connect(m_databases, &QListWidget::currentRowChanged, this, [this] { showDatabase(); });
    connect(create, &QPushButton::clicked, this, &ControlPanelDatabases::newDatabase);
    connect(remove, &QPushButton::clicked, this, &ControlPanelDatabases::deleteDatabase);
    connect(bind, &QPushButton::clicked, this, &ControlPanelDatabases::save);
    connect(addUser, &QPushButton::clicked, this, &ControlPanelDatabases::addUser);
    connect(m_flags, &QLineEdit::returnPressed, this, &ControlPanelDatabases::addUser);
    connect(removeUser, &QPushButton::clicked, this, &ControlPanelDatabases::deleteUser);
    auto* removeKey =
        new QShortcut(QKeySequence::Delete, m_users, nullptr, nullptr, Qt::WidgetShortcut);
    connect(removeKey, &QShortcut::activated, this, &ControlPanelDatabases::deleteUser);
    // A user chosen in the list can be given another rank at once.
    connect(m_users, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (!item) return;
        m_username->setText(item->text(0));
        m_flags->setText(item->text(1));
    });
}

QString ControlPanelDatabases::selectedDatabase() const {
    return ChosenText(m_databases);
}

void ControlPanelDatabases::load() {
    FillChoosingFirst(m_databases, DatabaseManager::ListDatabases());
    showDatabase();
}

void ControlPanelDatabases::showDatabase() {
    const QString database = selectedDatabase();
    m_bots->clear();
    m_users->clear();
    if (database.isEmpty()) return;
    fillBots(database);
    fillUsers(database);
}

void ControlPanelDatabases::fillBots(const QString& database) {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        const BotElement& bot = table.bot(i);
        if (!bot.IsLoaded || bot.Profile().isEmpty()) continue;
        auto* row = new QListWidgetItem(bot.Profile(), m_bots);
        row->setFlags(row->flags() | Qt::ItemIsUserCheckable);
        row->setCheckState(bot.Database().compare(database, Qt::CaseInsensitive) == 0
                               ? Qt::Checked
                               : Qt::Unchecked);
    }
}

void ControlPanelDatabases::fillUsers(const QString& database) {
    for (const DatabaseUser& user : DatabaseManager::ListUsers(database))
        new QTreeWidgetItem(m_users, {user.name, QString::number(user.rank)});
}

bool ControlPanelDatabases::accepted(const ManageOutcome& outcome) {
    return AcceptedOrWarned(this, kTitle, outcome);
}

bool ControlPanelDatabases::save() {
    const QString database = selectedDatabase();
    if (database.isEmpty())
        return accepted(
            ManageOutcome::refused(QStringLiteral("You must select a database profile!")));
    bool saved = true;
    for (int row = 0; row < m_bots->count(); ++row) {
        const QListWidgetItem* item = m_bots->item(row);
        const ManageOutcome outcome =
            item->checkState() == Qt::Checked
                ? DatabaseManager::BindDatabase(item->text(), database)
                : DatabaseManager::ReleaseDatabase(item->text(), database);
        saved = accepted(outcome) && saved;
    }
    showDatabase();
    return saved;
}

void ControlPanelDatabases::newDatabase() {
    bool given = false;
    const QString name = QInputDialog::getText(this, QStringLiteral("Database Name"),
                                               QStringLiteral("Enter name of new database:"),
                                               QLineEdit::Normal, {}, &given);
    if (!given) return;
    if (!accepted(DatabaseManager::CreateDatabase(name))) return;
    load();
    const QList<QListWidgetItem*> made = m_databases->findItems(name, Qt::MatchFixedString);
    if (!made.isEmpty()) m_databases->setCurrentItem(made.first());
}

void ControlPanelDatabases::deleteDatabase() {
    const QString database = selectedDatabase();
    if (database.isEmpty()) return;
    const auto answer = QMessageBox::question(
        this, QStringLiteral("Delete Database?"),
        QStringLiteral("Are you sure you want to delete this database?\n"
                       "Note: All bots that are sharing it will no longer use a database."));
    if (answer != QMessageBox::Yes) return;
    accepted(DatabaseManager::DeleteDatabase(database));
    load();
}

void ControlPanelDatabases::addUser() {
    const QString database = m_databases->count() == 0 ? QString() : selectedDatabase();
    const ManageOutcome outcome = DatabaseManager::SetUserRank(
        database, m_username->text().trimmed(), LeadingNumber(m_flags->text()));
    if (!accepted(outcome)) return;
    m_users->clear();
    fillUsers(database);
    const QList<QTreeWidgetItem*> added =
        m_users->findItems(m_username->text().trimmed(), Qt::MatchFixedString);
    if (!added.isEmpty()) m_users->setCurrentItem(added.first());
}

void ControlPanelDatabases::deleteUser() {
    const QTreeWidgetItem* user = m_users->currentItem();
    const QString database = selectedDatabase();
    if (!user || database.isEmpty()) return;
    accepted(DatabaseManager::DeleteUser(database, user->text(0)));
    m_users->clear();
    fillUsers(database);
}
