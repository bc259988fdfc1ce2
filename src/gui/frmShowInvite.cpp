#include "gui/frmShowInvite.h"

#include "chat/BotElement.h"
#include "session/SlotTable.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmShowInvite::frmShowInvite(const ClanInvitation& Invitation, QWidget* parent)
    : QDialog(parent), m_invitation(Invitation) {
    setObjectName(QStringLiteral("frmShowInvite"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(Bots(Invitation.Index).Profile() + QStringLiteral(" - Clan Invitation"));
    // Worded as the chat line of the same packet.
    auto* what = new QLabel(ClanNotices::invitationText(Invitation.Kind) + u'.');
    ClanName = new QLabel(Invitation.ClanName);
    ClanName->setObjectName(QStringLiteral("ClanName"));
    ClanInviter = new QLabel(Invitation.Inviter);
    ClanInviter->setObjectName(QStringLiteral("ClanInviter"));
    Ticker = new QLabel;
    Ticker->setObjectName(QStringLiteral("Ticker"));
    Ticker->setWordWrap(true);
    auto* buttons = new QDialogButtonBox;
    QPushButton* accept =
        buttons->addButton(QStringLiteral("&Accept"), QDialogButtonBox::AcceptRole);
    accept->setObjectName(QStringLiteral("Command1"));
    QPushButton* decline =
        buttons->addButton(QStringLiteral("&Decline"), QDialogButtonBox::RejectRole);
    decline->setObjectName(QStringLiteral("Command2"));
    connect(accept, &QPushButton::clicked, this, [this] { answer(true); });
    connect(decline, &QPushButton::clicked, this, [this] { answer(false); });

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Clan:"), ClanName);
    form->addRow(QStringLiteral("Invited by:"), ClanInviter);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(what);
    layout->addLayout(form);
    layout->addWidget(Ticker);
    layout->addWidget(buttons);

    tmrKill.setInterval(1000);
    connect(&tmrKill, &QTimer::timeout, this, &frmShowInvite::tick);
    tmrKill.start();
    // Escape or the title bar's close leave the invitation to the server's time-out.
    connect(this, &QDialog::finished, this, [this] {
        if (!m_answered) ClanNotices::instance().forget(m_invitation);
    });
}

void frmShowInvite::tick() {
    if (m_counter == 0) m_counter = ClanNotices::kAnswerSeconds;
    Ticker->setText(QStringLiteral("You have ") + QString::number(m_counter) +
                    QStringLiteral(" seconds to respond to this request before it is "
                                   "automatically declined."));
    setWindowTitle(Bots(m_invitation.Index).Profile() + QStringLiteral(" - Clan Invitation (") +
                   QString::number(m_counter) + QStringLiteral(" seconds remain)"));
    if (--m_counter == 0) {
        tmrKill.stop();
        close();
    }
}

void frmShowInvite::answer(bool accept) {
    m_answered = true;
    ClanNotices::instance().answer(m_invitation, accept);
    close();
}
