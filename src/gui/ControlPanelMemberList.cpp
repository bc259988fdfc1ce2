#include "gui/ControlPanelMemberList.h"

#include "commands/AliasGroupEditor.h"
#include "gui/PanelHelpers.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

ControlPanelMemberList::ControlPanelMemberList(const Texts& texts, QWidget* parent)
    : ControlPanelPage(parent), m_texts(texts) {
    setObjectName(texts.page);
    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(texts.heading), 0, 0, 1, 2);

    m_list = new QListWidget;
    m_list->setObjectName(texts.list);
    auto* add = new QPushButton(QStringLiteral("&Add"));
    add->setObjectName(texts.page + QStringLiteral("Add"));
    add->setToolTip(texts.createTitle);
    auto* remove = new QPushButton(QStringLiteral("&Remove"));
    remove->setObjectName(texts.page + QStringLiteral("Remove"));
    remove->setToolTip(texts.deleteTitle);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    auto* listColumn = new QVBoxLayout;
    listColumn->addWidget(m_list, 1);
    listColumn->addLayout(buttons);
    layout->addLayout(listColumn, 1, 0);

    m_members = new QPlainTextEdit;
    m_members->setObjectName(texts.members);
    m_members->setTabChangesFocus(true);
    m_details = new QVBoxLayout;
    auto* memberColumn = new QVBoxLayout;
    memberColumn->addWidget(new QLabel(QStringLiteral("Members, one a line:")));
    memberColumn->addWidget(m_members, 1);
    memberColumn->addLayout(m_details);
    layout->addLayout(memberColumn, 1, 1);
    layout->setColumnStretch(1, 1);

    connect(m_list, &QListWidget::currentRowChanged, this, [this] { showSelected(); });
    connect(add, &QPushButton::clicked, this, &ControlPanelMemberList::createEntry);
    connect(remove, &QPushButton::clicked, this, &ControlPanelMemberList::removeEntry);
}

QString ControlPanelMemberList::selectedName() const {
    return ChosenText(m_list);
}

bool ControlPanelMemberList::select(const QString& name) {
    const QList<QListWidgetItem*> found = m_list->findItems(name, Qt::MatchFixedString);
    if (found.isEmpty()) return false;
    m_list->setCurrentItem(found.first());
    return true;
}

void ControlPanelMemberList::load() {
    FillChoosingFirst(m_list, names());
    showSelected();
}

void ControlPanelMemberList::showSelected() {
    const QString name = selectedName();
    m_members->setPlainText(name.isEmpty() ? QString() : members(name).join(u'\n'));
    showDetails(name);
}

bool ControlPanelMemberList::save() {
    const QString name = selectedName();
    // With nothing chosen there is nothing to store.
    if (name.isEmpty()) return true;
    return accepted(store(name, AliasGroupEditor::SplitMembers(m_members->toPlainText())));
}

bool ControlPanelMemberList::accepted(const ManageOutcome& outcome) {
    return AcceptedOrWarned(this, m_texts.heading.chopped(1), outcome);
}

void ControlPanelMemberList::createEntry() {
    bool given = false;
    const QString name = QInputDialog::getText(this, m_texts.createTitle, m_texts.createText,
                                               QLineEdit::Normal, {}, &given);
    if (!given || name.isEmpty()) return;
    if (!accepted(create(name))) return;
    load();
    select(name);
}

void ControlPanelMemberList::removeEntry() {
    const QString name = selectedName();
    if (name.isEmpty()) return;
    if (QMessageBox::question(this, m_texts.deleteTitle, m_texts.deleteText) != QMessageBox::Yes)
        return;
    accepted(remove(name));
    load();
}
