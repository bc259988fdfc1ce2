#include "gui/frmConfigManage.h"

#include "gui/DialogParts.h"
#include "gui/PanelHelpers.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const char* const kCaptions[] = {
    "Manage Accounts",         "Manage Passwords",      "Manage Servers",
    "Manage Bnls Servers",     "Manage Channels",       "Manage Cdkeys",
    "Manage Expansion Cdkeys", "Manage Idle Messaging", "Manage Databases",
};

} // namespace

frmConfigManage::frmConfigManage(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmConfigManage"));
    setModal(true);
    auto* column = new QVBoxLayout(this);

    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("Text1"));
    column->addWidget(m_text);
    connect(m_text, &QLineEdit::returnPressed, this, &frmConfigManage::cmdAdd_Click);

    auto* row = new QHBoxLayout;
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("List1"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    auto* deleteKey = new QAction(m_list);
    deleteKey->setShortcut(QKeySequence::Delete);
    deleteKey->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteKey, &QAction::triggered, this, &frmConfigManage::cmdDel_Click);
    m_list->addAction(deleteKey);
    row->addWidget(m_list, 1);
    auto* buttons = new QVBoxLayout;
    QPushButton* add = DialogButton(QStringLiteral("Add"), QStringLiteral("cmdAdd"),
                                    QStringLiteral("Add the text above to the list (Enter)"));
    QPushButton* edit =
        DialogButton(QStringLiteral("Edit"), QStringLiteral("cmdEdit"),
                     QStringLiteral("Take the entry out of the list into the box to change it"));
    QPushButton* del = DialogButton(QStringLiteral("Delete"), QStringLiteral("cmdDel"),
                                    QStringLiteral("Remove the entry from the list (Delete)"));
    connect(add, &QPushButton::clicked, this, &frmConfigManage::cmdAdd_Click);
    connect(edit, &QPushButton::clicked, this, &frmConfigManage::cmdEdit_Click);
    connect(del, &QPushButton::clicked, this, &frmConfigManage::cmdDel_Click);
    for (QPushButton* button : {add, edit, del})
        buttons->addWidget(button);
    buttons->addStretch(1);
    m_extras = new QVBoxLayout;
    buttons->addLayout(m_extras);
    row->addLayout(buttons);
    column->addLayout(row, 1);

    column->addWidget(CloseButtons(this));
    resize(360, 300);
}

void frmConfigManage::Manager(OfferedList::Kind kind) {
    m_kind = kind;
    m_list->clear();
    setWindowTitle(QString::fromLatin1(kCaptions[kind]));
    fill();
}

void frmConfigManage::fill() {
    m_list->clear();
    m_list->addItems(OfferedList::entries(m_kind));
}

bool frmConfigManage::acceptEntry(const QString&) {
    return true;
}

void frmConfigManage::cmdAdd_Click() {
    const QString text = m_text->text();
    if (text.isEmpty() || !acceptEntry(text)) return;
    OfferedList::add(m_kind, text);
    fill();
    m_text->clear();
    m_text->setFocus();
}

void frmConfigManage::cmdDel_Click() {
    const QString entry = ChosenText(m_list);
    if (entry.isEmpty()) return;
    OfferedList::remove(m_kind, entry);
    fill();
}

void frmConfigManage::cmdEdit_Click() {
    const QString entry = ChosenText(m_list);
    if (entry.isEmpty()) return;
    m_text->setText(entry);
    OfferedList::remove(m_kind, entry);
    fill();
    m_text->setFocus();
}
