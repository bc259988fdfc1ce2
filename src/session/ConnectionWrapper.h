#pragma once

#include <QByteArray>
#include <QString>

class PacketReader;

// The Battle.net protocol driver of a slot, reached as Bots(i).Connection. It
// keeps no state of its own: everything lives in Bots(i) and Logons(i), and
// every operation takes the slot number first.
class ConnectionWrapper {
public:
    // Session set-up and tear-down.
    bool ClearVariables(int Index);
    void KillSocket(int Index);
    static void SocketErrorText(int Kind, int Index, int Number);

    // Socket events of wsBNET and wsBNLS.
    void wsBNET_Connect(int Index);
    void wsBNET_DataArrival(int Index);
    void wsBNET_Close(int Index);
    void wsBNET_Error(int Index, int Number, const QString& Description);
    void wsBNLS_Connect(int Index);
    void wsBNLS_DataArrival(int Index);
    void wsBNLS_Close(int Index);
    void wsBNLS_Error(int Index, int Number, const QString& Description);

    // The watchdog's look at one slot, every 100 ms: an attempt that has not
    // reached chat in 30 seconds begins again, and a dropped slot whose wait
    // is over tries its server again.
    static void Watchdog(int Index);
    // Ends the connection of a slot after a fault of the stream, with the line
    // that names it, and plans the next try.
    void DropConnection(int Index, const QString& Line);
    // Plans the next try of a slot that lost its connection, unless the user
    // or a refusal ended it, and says when it will be.
    static void ScheduleReconnect(int Index);

    // Identification and version check.
    void Output_AuthInfo(int Index);
    void Handle_AuthInfo(int Index, PacketReader& Reader);
    void Output_AuthCheck(int Index, quint32 Checksum, quint32 version, const QByteArray& Result);
    void Handle_AuthCheck(int Index, PacketReader& Reader);
    void Bnls0x09(int Index);
    void Handle_BnlsVersionCheck(int Index, PacketReader& Reader);
    // A refused version byte: BNLS is asked for the current one (0x10), which
    // is stored and tried once.
    void Bnls0x10(int Index);
    void Handle_BnlsVersionByte(int Index, PacketReader& Reader);

    // Old logon system.
    void Output_UDP(int Index);
    void Output_AuthLogon_OLS(int Index);
    void Output_CreateAccount_OLS(int Index);
    void Output_ChangePassword_OLS(int Index);
    void Handle_LoginResponse_OLS(int Index, PacketReader& Reader);
    void Handle_CreateAccount_OLS(int Index, quint32 Status);
    void Handle_ChangePassword_OLS(int Index, PacketReader& Reader);

    // New logon system.
    void Output_AuthLogon_NLS(int Index);
    void Handle_LogonResponse_NLS(int Index, PacketReader& Reader);
    void Handle_LogonProof_NLS(int Index, PacketReader& Reader);
    void Output_CreateAccount_NLS(int Index);
    void Handle_CreateAccount_NLS(int Index, PacketReader& Reader);
    void Output_ChangePassword_NLS(int Index);
    void Handle_ChangePassword_NLS(int Index, PacketReader& Reader);
    void Handle_ChangeProof_NLS(int Index, PacketReader& Reader);

    // Entering chat and keep-alive.
    void Output_Login(int Index);
    void Output_EnterChat(int Index);

    // The friends list: asked for whole, or told of one friend or a move.
    void Output_FriendsList(int Index);
    void Handle_FriendsList(int Index, PacketReader& Reader);
    void Handle_FriendUpdate(int Index, PacketReader& Reader);
    void Handle_FriendPosition(int Index, PacketReader& Reader);

    // The public profile of an account: sex, location and description.
    void Output_ProfileRequest(int Index, const QString& Account);
    // The bot's own account facts, written to the chat when they come.
    void Output_AccountInfoRequest(int Index);
    void Handle_ProfileKeys(int Index, PacketReader& Reader);
    void Parse_AccountKeys(int Index, const QString& Text);
    // Writes sex, location and description of the profile's own account.
    void Output_WriteProfile(int Index, const QStringList& Values);
    // Only the profile's own account may be saved, in any spelling.
    static bool IsOwnProfile(int Index, const QString& Account);
    void Output_JoinChannel(int Index, const QString& Channel);
    void Handle_EnterChat(int Index, PacketReader& Reader);
    void Handle_ChannelList(int Index, PacketReader& Reader);
    void Handle_Ping(int Index, PacketReader& Reader);
    void Handle_News(int Index, PacketReader& Reader);
    void Handle_ForcedDisconnect(int Index, PacketReader& Reader);
    // The pings that follow 0x50, as the profile's spoofing asks.
    void SendPingSpoof(int Index);

    // Chat events: decoding, then now or through the delayed list.
    void Handle_ChatEvent(int Index, PacketReader& Reader);
    void RunChatEvent(int Index, quint8 EventID, const QString& Username, const QString& Text,
                      qint32 Flags, qint32 Ping);
    void Handle_ChatEvent_JoinChannel(int Index, const QString& Channel, qint32 Flags);
    void Handle_ChatEvent_UserShow(int Index, const QString& Username, const QString& Text,
                                   qint32 Flags, qint32 Ping);
    void Handle_ChatEvent_Join(int Index, const QString& Username, const QString& Text,
                               qint32 Flags, qint32 Ping);
    void Handle_ChatEvent_Leave(int Index, const QString& Username, const QString& Text,
                                qint32 Flags, qint32 Ping);
    void Handle_ChatEvent_UserFlags(int Index, const QString& Username, const QString& Text,
                                    qint32 Flags, qint32 Ping);
    void Handle_ChannelFull(int Index, const QString& Text);
    void Handle_ChannelNotExist(int Index, const QString& Text);
    void Handle_ChannelRestricted(int Index, const QString& Text);
    void Handle_ChatEvent_Talk(int Index, const QString& Username, QString Text, qint32 Flags,
                               qint32 Ping);
    void Handle_ChatEvent_Emote(int Index, const QString& Username, QString Text, qint32 Flags,
                                qint32 Ping);
    void Handle_ChatEvent_WhisperFrom(int Index, const QString& Username, QString Text,
                                      qint32 Flags, qint32& Ping);
    void Handle_ChatEvent_WhisperTo(int Index, const QString& Username, QString Text, qint32 Flags,
                                    qint32& Ping);
    void Handle_ChatEvent_Information(int Index, const QString& Text);
    void Handle_ChatEvent_Error(int Index, const QString& Text);
    void Handle_ChatEvent_BroadCast(int Index, const QString& Text);

    // Account maintenance, when a change is pending at the end of the version check.
    void Output_RegisterEmail(int Index);
    void Handle_RegisterEmail(int Index);
    void Process_ChangePassword(int Index);
    void Process_ChangeEmail(int Index);
    void Process_ForgotPassword(int Index);

private:
    // The slot's attempt is still at the version check: its Battle.net
    // connection is not open yet, and no try is planned.
    static bool inBnlsStep(int Index);
    void bnlsProtocolError(int Index, const QString& what);
    // After a 0x51 refusal of the version byte: true when BNLS is asked for
    // the current one; false when it was asked already or there is no BNLS.
    bool askVerbyte(int Index, quint32 Result);
    void refuseVersion(int Index, quint32 Result);

    // The join gate: the last join printed, so a burst of rejoins shows once.
    QString LastJoinUser;
    quint32 LastJoinTick = 0;

    void dispatch(int Index, PacketReader& Reader, quint8 PacketID);
    void DecodeCdkey(int Index, const QString& Key);
    void writeKey(int Index, class PacketWriter& writer, const QString& key);
    void sendLogonChallenge(int Index);
};

// The product numbers a BNLS server knows; 0 for an unknown code, in either
// spelling and any case.
int ProductCode(const QString& Code);
// What the product code of a profile decides, in either case.
// WarCraft III products log on by the new system.
bool UsesNewLogon(const QString& Client);
// Diablo II and WarCraft III may take the version check locally; the others
// always ask BNLS.
bool CanHashLocally(const QString& Client);
// The expansions send two product keys.
bool HasTwoKeys(const QString& Client);
// Diablo II realms reach accounts by the star form of their names.
bool IsDiabloRealm(const QString& Client);

// The three game files of the version check, in their order.
struct HashFiles {
    QString file1, file2, file3;
};
HashFiles GetHashFiles(const QString& Client);
