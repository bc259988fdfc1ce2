#include "gui/frmConfigManageProfile.h"

#include "chat/BotElement.h"
#include "gui/DialogParts.h"
#include "gui/PanelHelpers.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>

frmConfigManageProfile::frmConfigManageProfile(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmConfigManageProfile"));
    setWindowTitle(QStringLiteral("Manage Profiles"));
    setModal(true);
    auto* grid = new QGridLayout(this);

    auto* prompt = new QLabel(QStringLiteral("Profile name:"));
    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("Text1"));
    prompt->setBuddy(m_text);
    connect(m_text, &QLineEdit::returnPressed, this, &frmConfigManageProfile::cmdAdd_Click);
    QPushButton* add = DialogButton(QStringLiteral("Add Profile"), QStringLiteral("cmdAdd"),
                                    QStringLiteral("Create a profile of this name (Enter)"));
    connect(add, &QPushButton::clicked, this, &frmConfigManageProfile::cmdAdd_Click);
    grid->addWidget(prompt, 0, 0, 1, 2);
    grid->addWidget(m_text, 1, 0);
    grid->addWidget(add, 1, 1);

    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("List1"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->addWidget(m_list, 2, 0, 4, 1);
    QPushButton* clone = DialogButton(QStringLiteral("Clone"), QStringLiteral("cmdClone"),
                                      QStringLiteral("Copy the selected profile under a new name"));
    QPushButton* rename = DialogButton(QStringLiteral("Rename"), QStringLiteral("cmdRename"),
                                       QStringLiteral("Give the selected profile a new name"));
    QPushButton* del = DialogButton(QStringLiteral("Delete"), QStringLiteral("cmdDel"),
                                    QStringLiteral("Remove the selected profile"));
    connect(clone, &QPushButton::clicked, this, &frmConfigManageProfile::cmdClone_Click);
    connect(rename, &QPushButton::clicked, this, &frmConfigManageProfile::cmdRename_Click);
    connect(del, &QPushButton::clicked, this, &frmConfigManageProfile::cmdDel_Click);
    grid->addWidget(clone, 2, 1);
    grid->addWidget(rename, 3, 1);
    grid->addWidget(del, 4, 1);
    grid->setRowStretch(5, 1);

    grid->addWidget(CloseButtons(this), 6, 0, 1, 2);

    showList();
    resize(380, 320);
}

void frmConfigManageProfile::showList(const QString& select) {
    QString wanted = select.isEmpty() ? ChosenText(m_list) : select;
    if (wanted.isEmpty()) {
        const int active = SlotTable::instance().CurrentIndex();
        if (active > 0) wanted = Bots(active).Profile();
    }
    m_list->clear();
    m_list->addItems(ProfileLifecycle::ListProfiles());
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->text().compare(wanted, Qt::CaseInsensitive) == 0) {
            m_list->setCurrentRow(row);
            break;
        }
    }
}

void frmConfigManageProfile::cmdAdd_Click() {
    const QString name = m_text->text();
    const ProfileOutcome outcome = ProfileLifecycle::CreateProfile(name);
    if (!outcome.ok) {
        ShowWarning(this, outcome.warning);
        return;
    }
    showList(name);
    m_text->clear();
    m_text->setFocus();
}

void frmConfigManageProfile::askName(const QString& prompt,
                                     const std::function<void(const QString&)>& answered) {
    auto* box = new QInputDialog(this);
    box->setObjectName(QStringLiteral("nameBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(windowTitle());
    box->setLabelText(prompt);
    // A cancelled box answers with the empty name, which the manager refuses.
    connect(box, &QInputDialog::finished, this, [box, answered](int result) {
        answered(result == QDialog::Accepted ? box->textValue() : QString());
    });
    box->open();
}

void frmConfigManageProfile::cmdClone_Click() {
    const QString from = ChosenText(m_list);
    if (from.isEmpty()) return;
    askName(QStringLiteral("What do you want to call the cloned profile?"),
            [this, from](const QString& to) {
                const ProfileOutcome outcome = ProfileLifecycle::CloneProfile(from, to);
                if (!outcome.ok) ShowWarning(this, outcome.warning);
                showList();
            });
}

void frmConfigManageProfile::cmdRename_Click() {
    const QString from = ChosenText(m_list);
    if (from.isEmpty()) return;
    askName(QStringLiteral("What do you want to rename ") + from + QStringLiteral(" to?"),
            [this, from](const QString& to) {
                const ProfileOutcome outcome = ProfileLifecycle::RenameProfile(from, to);
                if (!outcome.ok) {
                    ShowWarning(this, outcome.warning);
                    return;
                }
                showList(to);
            });
}

void frmConfigManageProfile::cmdDel_Click() {
    const QString name = ChosenText(m_list);
    if (name.isEmpty()) return;
    auto* box = new QMessageBox(QMessageBox::Question, windowTitle(),
                                QStringLiteral("Are you sure you want to delete this profile? \n"
                                               "Warning: This cannot be undone!"),
                                QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, this);
    box->setObjectName(QStringLiteral("deleteQuestion"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setDefaultButton(QMessageBox::No);
    connect(box, &QMessageBox::finished, this, [this, box, name] {
        if (box->clickedButton() != box->button(QMessageBox::Yes)) return;
        // A profile that could not be removed simply stays in the list.
        ProfileLifecycle::DeleteProfile(name);
        showList();
    });
    box->open();
}
