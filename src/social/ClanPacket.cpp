#include "social/ClanPacket.h"

#include "chat/BotElement.h"
#include "platform/Cp1252.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/PacketHandlers.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "social/ClanNotices.h"
#include "statistics/FlagNames.h"

#include <algorithm>

namespace {

constexpr quint8 kChieftain = 4;
constexpr quint8 kShaman = 3;

struct ResultText {
    quint8 packet;
    quint8 result;
    Status colour;
    const char* text;
};

// The answers to requests whose reply is only a result byte.
constexpr ResultText kResults[] = {
    {0x73, 0, Status::Information, "[BNET] Successfully disbanded the clan!"},
    {0x73, 2, Status::Error, "[BNET] Cannot disband the clan, it is not a week old yet!"},
    {0x73, 7, Status::Error, "[BNET] You are not authorized to disband the clan!"},
    {0x77, 0, Status::Information, "[BNET] Invitation accepted!"},
    {0x77, 4, Status::Error, "[BNET] Invitation declined!"},
    {0x77, 5, Status::Error, "[BNET] Failed to invite user!"},
    {0x77, 9, Status::Error, "[BNET] Clan is full, cannot invite any more users!"},
    {0x7A, 0, Status::Information, "[BNET] Successfully changed members rank."},
    {0x7A, 1, Status::Error, "[BNET] Failed to change members rank."},
    {0x7A, 2, Status::Error, "[BNET] Cannot change members rank."},
    {0x7A, 7, Status::Error, "[BNET] Only Cheiftain's and Shaman's can change a members rank."},
    {0x7A, 8, Status::Error,
     "[BNET] Not allowed to change members rank, they are either a Cheiftain or have been in "
     "the clan for less than a week. This may also occur when there are too many shamans."},
};

void report(int Index, const QString& text) {
    WriteChat(Index, Status::Warning, text);
}

bool refuse(int Index, const QString& text) {
    WriteChat(Index, Status::Error, text);
    return false;
}

bool refuse(int Index, const char* text) {
    return refuse(Index, QLatin1String(text));
}

// A request begins with its cookie, the tick count at sending.
PacketWriter request() {
    PacketWriter w;
    w.WriteDWORD(GetTickCount());
    return w;
}

void sendName(int Index, quint8 PacketID, const QString& Name) {
    PacketWriter w = request();
    w.WriteSTRING(Name);
    w.SendPacket(Index, PacketID);
}

void dressMember(ListItem& item, quint8 Rank, bool Online) {
    const QString rankName = GetClanRankName(Rank);
    item.iconKey = QStringLiteral("ClanRank") + QString::number(std::max<int>(Rank, 1));
    item.key = QString::number(Rank);
    item.color = Online ? StatusColor(Status::Success) : CurrentTheme().interface.ForeColor;
    item.toolTip = item.text +
                   (Rank == kChieftain ? QStringLiteral(" is the ") : QStringLiteral(" is a ")) +
                   rankName + u'.';
}

QString displayTag(int Index) {
    return ClanPacket::ShowClanTag(Bots(Index).ClanTag());
}

} // namespace

void ClanPacket::install() {
    for (quint8 id :
         {0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0x7D, 0x7E, 0x7F, 0x81})
        SetPacketHandler(id, &ClanPacket::dispatch);
}

QString ClanPacket::CreateClanTag(const QString& Tag) {
    QString wire = Tag;
    std::reverse(wire.begin(), wire.end());
    wire.truncate(4);
    return QString(4 - wire.size(), QChar(0)) + wire;
}

QString ClanPacket::ShowClanTag(const QString& WireTag) {
    qsizetype first = 0;
    qsizetype last = WireTag.size();
    while (first < last && WireTag[first].isNull())
        ++first;
    while (last > first && WireTag[last - 1].isNull())
        --last;
    QString tag = WireTag.mid(first, last - first);
    std::reverse(tag.begin(), tag.end());
    return tag;
}

bool ClanPacket::CheckClanMember(int Index) {
    if (!Bots(Index).ClanTag().isEmpty()) return true;
    return refuse(Index, "[BNET] Cannot perform clan action, you are not the member of a clan.");
}

void ClanPacket::Output_Invite(int Index, const QString& Name) {
    if (!CheckClanMember(Index)) return;
    if (Name.isEmpty()) return void(refuse(Index, "[BNET] Cannot invite null username."));
    if (Bots(Index).ClanRank() < kShaman)
        return void(refuse(
            Index, "[BNET] Only Cheiftain's and Shaman's can invite users to join the clan."));
    sendName(Index, 0x77, Name);
    report(Index, QStringLiteral("[BNET] Invitation sent to ") + Name +
                      QStringLiteral(" to join Clan ") + displayTag(Index) + u'.');
}

void ClanPacket::Output_Disband(int Index) {
    if (!CheckClanMember(Index)) return;
    if (Bots(Index).ClanRank() != kChieftain)
        return void(refuse(
            Index, "[BNET] Cannot disband the clan, you must be the chieftain of the clan."));
    request().SendPacket(Index, 0x73);
    report(Index, QStringLiteral("[BNET] Attempting to disband the clan.."));
}

void ClanPacket::Output_SetChieftain(int Index, const QString& Name) {
    if (!CheckClanMember(Index)) return;
    if (Name.isEmpty())
        return void(refuse(Index, "[BNET] Cannot change chieftain to null username."));
    if (Bots(Index).ClanRank() != kChieftain)
        return void(refuse(
            Index, "[BNET] Cannot change clan chieftain, you must be the chieftain of the clan."));
    sendName(Index, 0x74, Name);
    report(Index, QStringLiteral("[BNET] Attempting to change the clan Cheiftain to ") + Name +
                      QStringLiteral(".."));
}

void ClanPacket::Output_SetMOTD(int Index, const QString& Text) {
    if (!CheckClanMember(Index)) return;
    if (Bots(Index).ClanRank() < kShaman)
        return void(refuse(
            Index, "[BNET] Could not change clan message, you must be a shaman or chieftain."));
    sendName(Index, 0x7B, Text);
    report(Index, QStringLiteral("[BNET] Set new clan message to: ") + Text);
}

void ClanPacket::Output_RemoveMember(int Index, const QString& Name) {
    if (!CheckClanMember(Index)) return;
    if (Bots(Index).ClanRank() < kShaman)
        return void(
            refuse(Index, "[BNET] Could not remove member, you must be a shaman or chieftain."));
    sendName(Index, 0x78, Name);
    report(Index, QStringLiteral("[BNET] Attempting to remove ") + Name +
                      QStringLiteral(" from the clan."));
}

void ClanPacket::Output_Quit(int Index) {
    if (!CheckClanMember(Index)) return;
    // The account as configured: the session's name may carry a number behind it.
    sendName(Index, 0x78, Bots(Index).Config.Account());
    report(Index, QStringLiteral("[BNET] Attempting to quit the clan.."));
}

void ClanPacket::Output_SetRank(int Index, const QString& Name, quint8 Rank) {
    const quint8 own = Bots(Index).ClanRank();
    if (own == kShaman && Rank == kShaman)
        return void(refuse(
            Index, "[BNET] Cannot change rank, you must be a chieftain to change another shamans' "
                   "rank."));
    if (own != kChieftain && own != kShaman)
        return void(refuse(
            Index, "[BNET] Could not change members' rank, you must be a shaman or chieftain."));
    PacketWriter w = request();
    w.WriteSTRING(Name);
    w.WriteBYTE(Rank);
    w.SendPacket(Index, 0x7A);
    report(Index, QStringLiteral("[BNET] Attempting to change ") + Name +
                      QStringLiteral("'s rank to ") + GetClanRankName(Rank) + u'.');
}

void ClanPacket::Output_MembersList(int Index) {
    request().SendPacket(Index, 0x7D);
}

bool ClanPacket::isSelf(int Index, const QString& Name) {
    return Name.compare(Bots(Index).Config.Account(), Qt::CaseInsensitive) == 0;
}

int ClanPacket::MemberRank(int Index, const QString& Name) {
    const int row = lvClan(Index).find(Name);
    return row > 0 ? lvClan(Index).item(row).key.toInt() : -1;
}

ClanPacket::Rights ClanPacket::RightsOver(int Index, const QString& Name) {
    const int member = MemberRank(Index, Name);
    const int own = Bots(Index).ClanRank();
    if (member < 0 || own < kShaman || member >= own || isSelf(Index, Name)) return {};
    Rights rights;
    rights.remove = true;
    rights.promote = member >= 1 && member + 1 < own;
    rights.demote = member >= 2;
    return rights;
}

bool ClanPacket::mayAct(int Index, const QString& Name, const char* Verb, bool Rights::*Right) {
    if (!CheckClanMember(Index)) return false;
    const int member = MemberRank(Index, Name);
    if (member < 0)
        return refuse(Index, QStringLiteral("[BNET] ") + Name +
                                 QStringLiteral(" is not a member of Clan ") + displayTag(Index) +
                                 u'.');
    if (RightsOver(Index, Name).*Right) return true;
    return refuse(Index, QStringLiteral("[BNET] Cannot ") + QLatin1String(Verb) + u' ' + Name +
                             QStringLiteral(", a ") + GetClanRankName(quint8(member)) +
                             QStringLiteral(", as a ") + GetClanRankName(Bots(Index).ClanRank()) +
                             u'.');
}

// The name as the clan list spells it, which is how the server knows it.
QString ClanPacket::memberName(int Index, const QString& Name) {
    return lvClan(Index).item(lvClan(Index).find(Name)).text;
}

void ClanPacket::Promote(int Index, const QString& Name) {
    if (mayAct(Index, Name, "promote", &Rights::promote))
        Output_SetRank(Index, memberName(Index, Name), quint8(MemberRank(Index, Name) + 1));
}

void ClanPacket::Demote(int Index, const QString& Name) {
    if (mayAct(Index, Name, "demote", &Rights::demote))
        Output_SetRank(Index, memberName(Index, Name), quint8(MemberRank(Index, Name) - 1));
}

void ClanPacket::Remove(int Index, const QString& Name) {
    if (mayAct(Index, Name, "remove", &Rights::remove))
        Output_RemoveMember(Index, memberName(Index, Name));
}

void ClanPacket::Output_FindCandidates(int Index, const QString& Tag) {
    PacketWriter w = request();
    w.WriteVOID(cp1252::encode(CreateClanTag(Tag)));
    w.SendPacket(Index, 0x70);
}

void ClanPacket::Output_InviteMultiple(int Index, const QString& ClanName, const QString& Tag,
                                       const QStringList& Names) {
    PacketWriter w = request();
    w.WriteSTRING(ClanName);
    w.WriteVOID(cp1252::encode(CreateClanTag(Tag)));
    w.WriteBYTE(quint8(Names.size()));
    for (const QString& name : Names)
        w.WriteSTRING(name);
    w.SendPacket(Index, 0x71);
}

void ClanPacket::InviteUser(int Index, const QString& Tag) {
    const QString client = Bots(Index).Config.Client().toUpper();
    if (client != QLatin1String("W3XP") && client != QLatin1String("WAR3"))
        return WriteChat(Index,
                         {{StatusColor(Status::Error),
                           QStringLiteral("Cannot invite user, you are not using WarCraft III")}});
    if (!Tag.contains(u'@')) return Output_Invite(Index, Tag);
    WriteChat(Index, {{StatusColor(Status::Error),
                       QStringLiteral("Cannot invite user, they are not using WarCraft III?")}});
}

void ClanPacket::WriteMembers(int Index) {
    if (!CheckClanMember(Index)) return;
    const ListModel& list = lvClan(Index);
    WriteChat(Index, Status::Warning,
              QStringLiteral("Clan ") + displayTag(Index) + QStringLiteral(" (") +
                  QString::number(list.count()) + QStringLiteral(" members):"));
    for (int i = 1; i <= list.count(); ++i)
        WriteChat(Index, {{list.item(i).color, list.item(i).toolTip}});
}

void ClanPacket::Handle_NewMember(int Index, const QString& Name, quint8 Rank, bool Online,
                                  const QString&) {
    ListItem item = ListItem::withText(Name);
    item.tag = Name;
    dressMember(item, Rank, Online);
    lvClan(Index).add(item, Rank == kChieftain ? 1 : 0);
}

void ClanPacket::Handle_StatusChanged(int Index, const QString& Name, quint8 Rank, bool Online,
                                      const QString& Location) {
    ListModel& list = lvClan(Index);
    bool known = false;
    for (int i = list.count(); i >= 1; --i) {
        if (list.item(i).tag.toUpper() != Name.toUpper()) continue;
        ListItem item = list.item(i);
        dressMember(item, Rank, Online);
        list.setItem(i, item);
        known = true;
    }
    // Servers tell of a member who joined after the list came by this notice alone.
    if (!known) Handle_NewMember(Index, Name, Rank, Online, Location);
}

void ClanPacket::Handle_RemovedMember(int Index, const QString& Name) {
    ListModel& list = lvClan(Index);
    for (int i = list.count(); i >= 1; --i)
        if (list.item(i).tag.toUpper() == Name.toUpper()) list.removeAt(i);
}

void ClanPacket::Handle_RankChanged(int Index, quint8 Old, quint8 New, const QString& By) {
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Bot's clan rank was changed by ") + By +
                  QStringLiteral(" from ") + GetClanRankName(Old) + QStringLiteral(" to ") +
                  GetClanRankName(New) + u'.');
    setOwnRank(Index, New);
}

void ClanPacket::setOwnRank(int Index, quint8 Rank) {
    Bots(Index).setClanRank(Rank);
    Q_EMIT ClanNotices::instance().standingChanged(Index);
}

void ClanPacket::writeResult(int Index, quint8 PacketID, quint8 Result) {
    for (const ResultText& r : kResults) {
        if (r.packet == PacketID && r.result == Result)
            return WriteChat(Index, r.colour, QLatin1String(r.text));
    }
}

// A founding step typed on the terminal gets its answer as lines.
void ClanPacket::writeFoundingStep(int Index, quint8 PacketID, quint8 Result,
                                   const QStringList& Names) {
    const QString tag = ClanNotices::instance().takeTypedFounding(Index);
    const ClanNotices::Outcome* o = ClanNotices::outcome(PacketID, Result);
    if (tag.isEmpty() || !o) return;
    if (PacketID != 0x70 || Result != 0)
        return WriteChat(Index, {{o->colour, QStringLiteral("[BNET] ") + QLatin1String(o->text)}});
    WriteChat(Index,
              {{o->colour, QStringLiteral("[BNET] Clan tag ") + tag + QStringLiteral(" is free; ") +
                               QString::number(Names.size()) + QStringLiteral(" candidates: ") +
                               Names.join(QStringLiteral(", ")) + u'.'}});
    WriteChat(Index, Status::Information,
              QStringLiteral("Found the clan with /myclan create ") + tag +
                  QStringLiteral(" NAME,NAME,... CLAN NAME, naming at least 9 of them."));
}

void ClanPacket::handleMembership(int Index, PacketReader& Reader) {
    BotElement& bot = Bots(Index);
    Reader.Skip(1);
    bot.setClanTag(cp1252::decode(Reader.ReadVOID(4)));
    setOwnRank(Index, Reader.ReadBYTE());
    WriteChat(Index, Status::Success,
              QStringLiteral("[BNET] You are a ") + GetClanRankName(bot.ClanRank()) +
                  QStringLiteral(" of Clan ") + displayTag(Index) + u'.');
    Output_MembersList(Index);
    report(Index, QStringLiteral("[BNET] Requesting clan members list.."));
}

void ClanPacket::handleMembers(int Index, PacketReader& Reader) {
    const int count = Reader.ReadBYTE();
    lvClan(Index).clear();
    for (int i = 0; i < count; ++i) {
        const QString name = Reader.ReadSTRING();
        const quint8 rank = Reader.ReadBYTE();
        const bool online = Reader.ReadBYTE() != 0;
        Handle_NewMember(Index, name, rank, online, Reader.ReadSTRING());
    }
}

void ClanPacket::handleInvitation(int Index, PacketReader& Reader, int Kind) {
    ClanInvitation invitation;
    invitation.Index = Index;
    invitation.Kind = Kind;
    invitation.Value1 = Reader.ReadDWORD();
    invitation.Value2 = Reader.ReadDWORD();
    invitation.ClanName = Reader.ReadSTRING();
    invitation.Inviter = Reader.ReadSTRING();
    invitation.Tick = GetTickCount();
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] ") + ClanNotices::invitationText(Kind) +
                  QStringLiteral("..."));
    ClanNotices::instance().invitationReceived(invitation);
}

void ClanPacket::dispatch(int Index, PacketReader& Reader, quint8 PacketID) {
    BotElement& bot = Bots(Index);
    switch (PacketID) {
    case 0x72:
        return handleInvitation(Index, Reader, 1);
    case 0x79:
        return handleInvitation(Index, Reader, 2);
    case 0x75:
        return handleMembership(Index, Reader);
    case 0x76:
        if (Reader.ReadBYTE() != 1) return;
        WriteChat(Index, Status::Information,
                  QStringLiteral("[BNET] You have been removed from the clan!"));
        bot.setClanTag(QString());
        return;
    case 0x7D:
        Reader.Skip(4);
        return handleMembers(Index, Reader);
    case 0x7E:
        return Handle_RemovedMember(Index, Reader.ReadSTRING());
    case 0x7F: {
        const QString name = Reader.ReadSTRING();
        const quint8 rank = Reader.ReadBYTE();
        const bool online = Reader.ReadBYTE() != 0;
        // After a change of chieftain servers tell the bot its own new rank this way.
        if (isSelf(Index, name) && rank != bot.ClanRank()) setOwnRank(Index, rank);
        return Handle_StatusChanged(Index, name, rank, online, Reader.ReadSTRING());
    }
    case 0x81: {
        const quint8 old = Reader.ReadBYTE();
        const quint8 now = Reader.ReadBYTE();
        return Handle_RankChanged(Index, old, now, Reader.ReadSTRING());
    }
    default:
        break;
    }
    // The rest are replies: the cookie first, never compared.
    Reader.Skip(4);
    const quint8 result = Reader.ReadBYTE();
    switch (PacketID) {
    case 0x70: {
        QStringList names;
        const int count = result == 0 ? Reader.ReadBYTE() : 0;
        for (int i = 0; i < count; ++i)
            names << Reader.ReadSTRING();
        Q_EMIT ClanNotices::instance().candidatesFound(Index, result, names);
        return writeFoundingStep(Index, PacketID, result, names);
    }
    case 0x71:
        Q_EMIT ClanNotices::instance().foundingAnswered(Index, result);
        return writeFoundingStep(Index, PacketID, result, {});
    case 0x74:
        if (result == 0)
            WriteChat(Index, Status::Information,
                      QStringLiteral("[BNET] Successfully changed the clan's chieftain!"));
        else
            WriteChat(Index, Status::Error,
                      QStringLiteral("[BNET] Failed to change the clan's chieftain."));
        return;
    case 0x78:
        if (result == 0)
            WriteChat(Index, Status::Information,
                      QStringLiteral("[BNET] Successfully removed member from the clan."));
        else
            WriteChat(Index, Status::Error,
                      QStringLiteral("[BNET] Failed to remove member from the clan."));
        return;
    default:
        writeResult(Index, PacketID, result);
        if (PacketID == 0x73 && result == 0) bot.setClanTag(QString());
        // Asked again, so the newcomer shows where a server sends no notice of it.
        if (PacketID == 0x77 && result == 0) Output_MembersList(Index);
        return;
    }
}
