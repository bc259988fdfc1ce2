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

QString ClanNotices::invitationText(int Kind) {
    return Kind == 1 ? QStringLiteral("You have been invited to help create a clan")
                     : QStringLiteral("You have been invited to join a clan");
}

const ClanNotices::Outcome* ClanNotices::outcome(quint8 PacketID, int Result) {
    static constexpr Outcome kOutcomes[] = {
        {0x70, 0, "Continue on to Step2!", 65280},
        {0x70, 1, "Clan channel is already taken!", 255},
        {0x70, 8, "This cdkey is clanned!", 255},
        {0x70, 10, "Invalid clan tag specified!", 255},
        {0x71, 0, "Success, everyone accepted invitation!", 65280},
        {0x71, 4, "Failed, not everyone accepted the invitation!", 255},
        {0x71, 5, "Not available, not in channel or already in a clan!", 255}};
    for (const Outcome& o : kOutcomes)
        if (o.packet == PacketID && o.result == Result) return &o;
    return nullptr;
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
