#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class PacketReader;

// The WarCraft III clan protocol of a slot: the checks before each request,
// the requests themselves, the replies and notices, and the clan list view
// lvClan(Index). The clan's state is ClanTag and ClanRank of the slot.
class ClanPacket {
public:
    // Takes the clan packets over from the session's dispatch; once, at start.
    static void install();

    // Writes the refusal and returns false when the slot is in no clan.
    static bool CheckClanMember(int Index);

    static void Output_Invite(int Index, const QString& Name);
    static void Output_Disband(int Index);
    static void Output_SetChieftain(int Index, const QString& Name);
    static void Output_SetMOTD(int Index, const QString& Text);
    static void Output_RemoveMember(int Index, const QString& Name);
    static void Output_Quit(int Index);
    static void Output_SetRank(int Index, const QString& Name, quint8 Rank);
    static void Output_MembersList(int Index);
    // A member one rank up or down, or out of the clan, after the checks of
    // RightsOver: the typed commands and the clan list's menu.
    static void Promote(int Index, const QString& Name);
    static void Demote(int Index, const QString& Name);
    static void Remove(int Index, const QString& Name);
    // The two steps of founding: the tag's candidates, then the invitations.
    static void Output_FindCandidates(int Index, const QString& Tag);
    static void Output_InviteMultiple(int Index, const QString& ClanName, const QString& Tag,
                                      const QStringList& Names);

    static void Handle_NewMember(int Index, const QString& Name, quint8 Rank, bool Online,
                                 const QString& Location);
    static void Handle_StatusChanged(int Index, const QString& Name, quint8 Rank, bool Online,
                                     const QString& Location);
    static void Handle_RemovedMember(int Index, const QString& Name);
    static void Handle_RankChanged(int Index, quint8 Old, quint8 New, const QString& By);

    // What the slot's own rank lets it do to a member, as the server allows it:
    // a shaman or chieftain acts on ranks below its own; a new peon's rank is
    // fixed for its first week; nobody acts on itself.
    struct Rights {
        bool promote = false;
        bool demote = false;
        bool remove = false;
    };
    static Rights RightsOver(int Index, const QString& Name);
    // The rank of a member of the clan list; -1 for a name not in it.
    static int MemberRank(int Index, const QString& Name);

    // The wire form of a tag: the DWORD servers read as big-endian text, so
    // the text turned round and NUL-padded in front, four characters.
    static QString CreateClanTag(const QString& Tag);
    // A tag as a person reads it: its NUL padding removed at either end,
    // turned round; both paddings read back the same.
    static QString ShowClanTag(const QString& WireTag);
    // The user list's Invite item: refused for other products and for realm names.
    static void InviteUser(int Index, const QString& Tag);
    // The members as lines of text, for a run without a window.
    static void WriteMembers(int Index);

private:
    static void dispatch(int Index, PacketReader& Reader, quint8 PacketID);
    static void handleMembership(int Index, PacketReader& Reader);
    static void handleMembers(int Index, PacketReader& Reader);
    static void handleInvitation(int Index, PacketReader& Reader, int Kind);
    static void writeResult(int Index, quint8 PacketID, quint8 Result);
    static void setOwnRank(int Index, quint8 Rank);
    static bool isSelf(int Index, const QString& Name);
    // Writes the refusal and returns false when the slot's rank does not give the right.
    static bool mayAct(int Index, const QString& Name, const char* Verb, bool Rights::*Right);
    static QString memberName(int Index, const QString& Name);
    static void writeFoundingStep(int Index, quint8 PacketID, quint8 Result,
                                  const QStringList& Names);
};
