#include "gui/frmProfileLookup.h"

#include "chat/BotElement.h"
#include "session/SlotTable.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmProfileLookup::frmProfileLookup(int Index, const QString& ReadUser, const QStringList& Values,
                                   QWidget* parent)
    : QDialog(parent), m_index(Index) {
    setObjectName(QStringLiteral("frmProfileLookup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(Bots(Index).Profile() + QStringLiteral(" - Profile"));
    lblUser = new QLabel;
    lblUser->setObjectName(QStringLiteral("lblUser"));
    QFont bold = lblUser->font();
    bold.setBold(true);
    lblUser->setFont(bold);
    Text1 = new QLineEdit(Values.value(0));
    Text1->setObjectName(QStringLiteral("Text1"));
    Text2 = new QLineEdit(Values.value(1));
    Text2->setObjectName(QStringLiteral("Text2"));
    Text3 = new QPlainTextEdit(Values.value(2));
    Text3->setObjectName(QStringLiteral("Text3"));
    Text3->setTabChangesFocus(true);
    Command1 = new QPushButton(QStringLiteral("&Save profile"));
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, &frmProfileLookup::save);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Sex:"), Text1);
    form->addRow(QStringLiteral("Location:"), Text2);
    form->addRow(QStringLiteral("Description:"), Text3);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblUser);
    layout->addLayout(form);
    layout->addWidget(Command1, 0, Qt::AlignRight);
    resize(360, 280);
    setReadUser(ReadUser);
}

bool frmProfileLookup::canSave() const {
    return ConnectionWrapper::IsOwnProfile(m_index, m_user);
}

void frmProfileLookup::setReadUser(const QString& user) {
    m_user = user;
    lblUser->setText(user);
    // Someone else's profile can be read, not saved: no button below the text.
    Command1->setEnabled(canSave());
    Command1->setVisible(canSave());
    for (QLineEdit* edit : {Text1, Text2})
        edit->setReadOnly(!canSave());
    Text3->setReadOnly(!canSave());
}

void frmProfileLookup::save() {
    if (!canSave()) return;
    Bots(m_index).Connection.Output_WriteProfile(
        m_index, {Text1->text(), Text2->text(), Text3->toPlainText()});
    close();
}
