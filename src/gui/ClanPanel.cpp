#include "gui/ClanPanel.h"

#include "chat/BotElement.h"
#include "gui/IconPainter.h"
#include "gui/frmClanCreator.h"
#include "session/SlotTable.h"
#include "social/ClanNotices.h"
#include "social/ClanPacket.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace {

constexpr int kShaman = 3;
constexpr int kChieftain = 4;

} // namespace

ClanPanel::ClanPanel(QWidget* parent) : QWidget(parent) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblClan"));
    layout->addWidget(m_status, 0, 0, 1, 2);
    addCommand(QStringLiteral("Change chieftain of the clan to:"),
               QStringLiteral("ChangeChieftain"), &ClanPacket::Output_SetChieftain, kChieftain);
    addCommand(QStringLiteral("Invite user to join the clan:"), QStringLiteral("InviteUser"),
               &ClanPacket::Output_Invite, kShaman);
    addCommand(QStringLiteral("Change clan message of the day:"), QStringLiteral("ChangeMessage"),
               &ClanPacket::Output_SetMOTD, kShaman);
    connect(addLink(QStringLiteral("View/edit members"), QStringLiteral("guiMembersClan"), 0,
                    kChieftain),
            &QToolButton::clicked, this, &ClanPanel::membersRequested);
    m_create = addLink(QStringLiteral("Create new clan"), QStringLiteral("guiCreateClan"), 0, 0);
    m_member.removeLast();
    connect(m_create, &QToolButton::clicked, this, [this] {
        frmClanCreator* form = frmClanCreator::forSlot(m_slot, window());
        form->show();
        form->raise();
    });
    // A chieftain hands the clan on before leaving it.
    connect(addLink(QStringLiteral("Leave the clan"), QStringLiteral("guiLeaveClan"), 0, kShaman),
            &QToolButton::clicked, this, [this] { ClanPacket::Output_Quit(m_slot); });
    connect(addLink(QStringLiteral("Disband the clan"), QStringLiteral("guiDisbandClan"),
                    kChieftain, kChieftain),
            &QToolButton::clicked, this, [this] { ClanPacket::Output_Disband(m_slot); });
    connect(&ClanNotices::instance(), &ClanNotices::standingChanged, this, [this](int index) {
        if (index == m_slot) showSlot(index);
    });
}

QLineEdit* ClanPanel::addCommand(const QString& caption, const QString& name,
                                 void (*act)(int, const QString&), int least) {
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
    m_member << Gated{box, least, kChieftain} << Gated{go, least, kChieftain};
    return box;
}

QToolButton* ClanPanel::addLink(const QString& caption, const QString& name, int least, int most) {
    auto* grid = static_cast<QGridLayout*>(layout());
    auto* link = new QToolButton;
    link->setObjectName(name);
    link->setText(caption);
    link->setAutoRaise(true);
    link->setCursor(Qt::PointingHandCursor);
    grid->addWidget(link, grid->rowCount(), 0, 1, 2, Qt::AlignLeft);
    m_member << Gated{link, least, most};
    return link;
}

void ClanPanel::showSlot(int index) {
    m_slot = index;
    const QString tag = ClanPacket::ShowClanTag(Bots(index).ClanTag());
    const bool inClan = !tag.isEmpty();
    m_status->setText(inClan ? QStringLiteral("Member of: Clan ") + tag
                             : QStringLiteral("Not a member of a clan."));
    const int rank = Bots(index).ClanRank();
    for (const Gated& g : std::as_const(m_member))
        g.widget->setEnabled(inClan && rank >= g.least && rank <= g.most);
    m_create->setEnabled(!inClan && index > 0);
}
