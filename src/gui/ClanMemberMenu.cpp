#include "gui/ClanMemberMenu.h"

#include "social/ClanPacket.h"
#include "statistics/FlagNames.h"

#include <QMenu>

QMenu* ClanMemberMenu(int Index, const QString& Member, QWidget* parent) {
    const ClanPacket::Rights rights = ClanPacket::RightsOver(Index, Member);
    if (!rights.promote && !rights.demote && !rights.remove) return nullptr;
    const int rank = ClanPacket::MemberRank(Index, Member);
    auto* menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("mnuClanMember"));
    const auto add = [&](bool offered, const QString& caption, const char* name,
                         void (*act)(int, const QString&)) {
        if (offered)
            menu->addAction(caption, menu, [Index, Member, act] { act(Index, Member); })
                ->setObjectName(QLatin1String(name));
    };
    add(rights.promote, QStringLiteral("Promote to ") + GetClanRankName(quint8(rank + 1)),
        "mnuPromoteMember", &ClanPacket::Promote);
    add(rights.demote, QStringLiteral("Demote to ") + GetClanRankName(quint8(rank - 1)),
        "mnuDemoteMember", &ClanPacket::Demote);
    add(rights.remove, QStringLiteral("Remove from clan"), "mnuRemoveMember", &ClanPacket::Remove);
    return menu;
}
