#include "social/ClanNotices.h"

#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "session/PacketWriter.h"

#include <QMetaMethod>
#include <algorithm>

ClanNotices& ClanNotices::instance() {
    static ClanNotices notices;
    return notices;
}

void ClanNotices::invitationReceived(const ClanInvitation& Invitation) {
    m_pending.push_back(Invitation);
    if (isSignalConnected(QMetaMethod::fromSignal(&ClanNotices::invitation))) {
        Q_EMIT invitation(Invitation);
        return;
    }
    // Nobody shows a dialog: the answer is typed.
    WriteChat(Invitation.Index, Status::Information,
              QStringLiteral("Clan ") + Invitation.ClanName + QStringLiteral(", invited by ") +
                  Invitation.Inviter + QStringLiteral(": type /accept or /decline within ") +
                  QString::number(kAnswerSeconds) + QStringLiteral(" seconds."));
}

void ClanNotices::answer(const ClanInvitation& Invitation, bool Accept) {
    PacketWriter w;
    w.WriteDWORD(Invitation.Value1);
    w.WriteDWORD(Invitation.Value2);
    w.WriteSTRING(Invitation.Inviter);
    w.WriteBYTE(Accept ? 6 : 4);
    w.SendPacket(Invitation.Index, Invitation.Kind == 1 ? 0x72 : 0x79);
    forget(Invitation);
}

void ClanNotices::forget(const ClanInvitation& Invitation) {
    m_pending.erase(std::remove(m_pending.begin(), m_pending.end(), Invitation), m_pending.end());
}

void ClanNotices::dropExpired() {
    std::erase_if(m_pending, [](const ClanInvitation& i) {
        return TicksSince(i.Tick) >= quint32(kAnswerSeconds) * 1000;
    });
}

bool ClanNotices::answerOldest(int Index, bool Accept) {
    dropExpired();
    const auto it = std::find_if(m_pending.begin(), m_pending.end(),
                                 [Index](const ClanInvitation& i) { return i.Index == Index; });
    if (it == m_pending.end()) return false;
    answer(*it, Accept);
    return true;
}
