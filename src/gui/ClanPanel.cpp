#include "gui/ClanPanel.h"

#include "chat/BotElement.h"
#include "gui/IconPainter.h"
#include "gui/frmClanCreator.h"
#include "session/SlotTable.h"
#include "social/ClanPacket.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

ClanPanel::ClanPanel(QWidget* parent) : QWidget(parent) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblClan"));
    layout->addWidget(m_status, 0, 0, 1, 2);
    addCommand(QStringLiteral("Change chieftain of the clan to:"),
               QStringLiteral("ChangeChieftain"), &ClanPacket::Output_SetChieftain);
    addCommand(QStringLiteral("Invite user to join the clan:"), QStringLiteral("InviteUser"),
               &ClanPacket::Output_Invite);
    addCommand(QStringLiteral("Change clan message of the day:"), QStringLiteral("ChangeMessage"),
               &ClanPacket::Output_SetMOTD);
    connect(addLink(QStringLiteral("View/edit members"), QStringLiteral("guiMembersClan")),
            &QToolButton::clicked, this, &ClanPanel::membersRequested);
    m_create = addLink(QStringLiteral("Create new clan"), QStringLiteral("guiCreateClan"));
    m_member.removeLast();
    connect(m_create, &QToolButton::clicked, this, [this] {
        frmClanCreator* form = frmClanCreator::forSlot(m_slot, window());
        form->show();
        form->raise();
    });
    connect(addLink(QStringLiteral("Leave the clan"), QStringLiteral("guiLeaveClan")),
            &QToolButton::clicked, this, [this] { ClanPacket::Output_Quit(m_slot); });
    connect(addLink(QStringLiteral("Disband the clan"), QStringLiteral("guiDisbandClan")),
            &QToolButton::clicked, this, [this] { ClanPacket::Output_Disband(m_slot); });
}

QLineEdit* ClanPanel::addCommand(const QString& caption, const QString& name,
                                 void (*act)(int, const QString&)) {
    auto* grid = static_cast<QGridLayout*>(layout());
    const int row = grid->rowCount();
    grid->addWidget(new QLabel(caption), row, 0, 1, 2);
    auto* box = new QLineEdit;
    box->setObjectName(QStringLiteral("gui") + name);
    auto* go = new QToolButton;
    go->setObjectName(QStringLiteral("img") + name);
    go->setIcon(IconPainter::icon(IconPainter::ButtonJoin));
    go->setToolTip(caption);
    go->setAutoRaise(true);
    const auto run = [this, box, act] { act(m_slot, box->text()); };
    connect(go, &QToolButton::clicked, this, run);
    connect(box, &QLineEdit::returnPressed, this, run);
    grid->addWidget(box, row + 1, 0);
    grid->addWidget(go, row + 1, 1);
    m_member << box << go;
    return box;
}

QToolButton* ClanPanel::addLink(const QString& caption, const QString& name) {
    auto* grid = static_cast<QGridLayout*>(layout());
    auto* link = new QToolButton;
    link->setObjectName(name);
    link->setText(caption);
    link->setAutoRaise(true);
    link->setCursor(Qt::PointingHandCursor);
    grid->addWidget(link, grid->rowCount(), 0, 1, 2, Qt::AlignLeft);
    m_member << link;
    return link;
}

void ClanPanel::showSlot(int index) {
    m_slot = index;
    const QString tag = ClanPacket::ShowClanTag(Bots(index).ClanTag());
    const bool inClan = !tag.isEmpty();
    m_status->setText(inClan ? QStringLiteral("Member of: Clan ") + tag
                             : QStringLiteral("Not a member of a clan."));
    for (QWidget* w : std::as_const(m_member))
        w->setEnabled(inClan);
    m_create->setEnabled(!inClan && index > 0);
}
