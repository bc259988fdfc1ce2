#include "session/ConnectionWrapper.h"

#include "chat/BotElement.h"
#include "config/FileStamp.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "session/LogonNeeds.h"
#include "session/LogonRecord.h"
#include "session/PacketHandlers.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "session/StreamCutter.h"
#include "statistics/NameFormat.h"

namespace {

// The server lists offered in the profile form; each server connected to joins
// them with its port, so that picking the entry reaches the same server. On the
// protocol's own port the host stands alone, as the gateways seeded in the
// list are written.
void rememberServer(const char* list, const SocketControl& socket, quint16 defaultPort) {
    QString entry = socket.RemoteHost();
    if (socket.RemotePort() != defaultPort)
        entry += u':' + QString::number(socket.RemotePort());
    RegistryWrapper::instance().CreateKey(SettingsWrapper::RootKey() + QLatin1String(list) +
                                          u'\\' + entry);
}

struct ErrorText {
    int number;
    const char* bnet;
    const char* bnls; // nullptr: the same as for Battle.net
};

constexpr ErrorText kSocketErrors[] = {
    {10014,
     ": Cannot establish connection with the remote server, system detected an invalid address.",
     ": Cannot establish connection with the BNLS server, system detected an invalid address."},
    {10039,
     ": Cannot connect to remote server, destination address was not specified, please fill out "
     "what server you are connecting to.",
     ": Cannot connect to BNLS server, destination address was not specified, please fill out "
     "what server you are connecting to."},
    {10053,
     ": Cannot establish connection with the remote server, please check that you are connected "
     "to the internet, if you are the server may be offline. Otherwise you may be IP banned from "
     "the server, wait a while before reconnecting.",
     ": Cannot establish connection with the BNLS server, please check that you are connected to "
     "the internet, if you are the server may be offline."},
    {10054,
     ": Connection was forcibly closed by the remote server, as a result you may be temporarily "
     "IP banned. Please try reconnecting momentarily",
     ": Connection was forcibly closed by the BNLS server. Please try reconnecting momentarily"},
    {10060,
     ": Cannot establish connection with the remote server, please check that you are connected "
     "to the internet and that you or the server are not experiencing severe latency issues.",
     ": Cannot establish connection with the BNLS server, please check that you are connected to "
     "the internet and that you or the server are not experiencing severe latency issues."},
    {10061, ": Connection was refused by the remote server, try again later.",
     ": Connection was refused by the BNLS server, try again later."},
    {10064, ": Cannot establish connection with the remove server, the host is down.",
     ": Cannot establish connection with the BNLS server, the BNLS host is down, try another BNLS "
     "server."},
    {10065,
     ": No route to host, please make sure you are connected to the internet and a firewall isn't "
     "blocking the connection.",
     ": No route to BNLS host, please make sure you are connected to the internet and a firewall "
     "isn't blocking the connection."},
    {11004,
     ": The requested name is valid, but does not have an Internet IP address at the name server. "
     "This is not a temporary error. This means another type of request to the name server will "
     "result in an answer.",
     nullptr},
};

void writeAdvancedWork(int Index, PacketReader& Reader, const char* what) {
    if (!SettingsWrapper::instance().ShowAdvanced()) return;
    WriteChat(Index, Status::Neutral,
              QStringLiteral("[BNET] ") + QLatin1String(what) + QStringLiteral(" MPQ file is ") +
                  Reader.ReadSTRING());
}

void writeUnhandled(int Index, quint8 PacketID, const QByteArray& frame) {
    WriteChat(Index, {{0xFFFFFF, QStringLiteral("Unhandled packet: ") + FormatHex(PacketID, 2)}});
    for (const QString& line : HexDump(frame).split(QStringLiteral("\r\n"))) {
        if (!line.isEmpty()) WriteChat(Index, {{0xFFFFFF, line}});
    }
}

} // namespace

bool ConnectionWrapper::ClearVariables(int Index) {
    BotElement& bot = Bots(Index);
    bot.setOnline(false);
    Logons(Index).VersionRefusal = 0;
    const QList<LogonNeeds::Need> needs = LogonNeeds::Missing(bot.Config);
    // An empty setting is the user's to fill: trying again would only fail again.
    bot.CanConnect = needs.isEmpty();
    for (const LogonNeeds::Need& need : needs)
        WriteChat(Index, Status::Error,
                  need.prefix + QStringLiteral("Cannot connect: ") + need.text + u'.');
    return needs.isEmpty();
}

void ConnectionWrapper::KillSocket(int Index) {
    if (wsBNET(Index).State() != SocketControl::Closed)
        WriteChat(Index, Status::Error, QStringLiteral("[BNET] Disconnected!"));
    if (wsBNLS(Index).State() != SocketControl::Closed)
        WriteChat(Index, Status::Error, QStringLiteral("[BNLS] Disconnected!"));
    WriteChat(Index, Status::Error, QStringLiteral("[Connections Closed]"));
    wsBNET(Index).Close();
    wsBNLS(Index).Close();
    Bots(Index).CanConnect = false;
    Bots(Index).Reconnect.cancel();
}

void ConnectionWrapper::SocketErrorText(int Kind, int Index, int Number) {
    for (const ErrorText& e : kSocketErrors) {
        if (e.number != Number) continue;
        const char* text = (Kind == 1 && e.bnls) ? e.bnls : e.bnet;
        WriteChat(Index, Status::Error,
                  QString::fromLatin1(Kind == 1 ? "[BNLS] " : "[BNET] ") + QString::number(Number) +
                      QString::fromLatin1(text));
        return;
    }
}

void ConnectionWrapper::wsBNET_Connect(int Index) {
    Bots(Index).setOnline(false);
    // A new connection starts on a frame boundary: bytes left over from one
    // that ended in the middle of a frame would stand in front of the
    // server's first frame and stop every logon after it.
    Bots(Index).InBNCS.clear();
    const QString host = wsBNET(Index).RemoteHost();
    rememberServer("Servers1", wsBNET(Index), 6112);
    WriteChat(Index, Status::Success,
              QStringLiteral("[BNET] Connected to ") + host + QStringLiteral("!"));
    // The protocol byte goes alone, unframed, before any frame.
    wsBNET(Index).SendData(QByteArray(1, '\x01'));
    Output_AuthInfo(Index);
    PluginHost::instance().SocketConnect(Index);
}

void ConnectionWrapper::wsBNET_DataArrival(int Index) {
    BotElement& bot = Bots(Index);
    bot.InBNCS.append(wsBNET(Index).GetData());
    const FileStamp::Burst burst;
    streamcutter::CutBNCS(
        bot.InBNCS,
        {[this, Index](PacketReader& reader, quint8 id) { dispatch(Index, reader, id); },
         [Index](quint8 marker) {
             WriteChat(Index, Status::Error,
                       QStringLiteral("Invalid Battle.Net packet header received [") +
                           FormatHex(marker, 2) + QStringLiteral("]"));
         },
         // A frame shorter than its handler expects is dropped; the session
         // goes on with the next one.
         [Index](quint8 id, const char*) {
             WriteChat(Index, Status::Error,
                       QStringLiteral("[BNET] Dropped a malformed packet ") + FormatHex(id, 2) +
                           QStringLiteral(" from the server."));
         },
         [this, Index](const QString& what) {
             DropConnection(Index, QStringLiteral("[BNET] Protocol error: the server sent ") +
                                       what + QStringLiteral("; closing the connection."));
         }});
}

void ConnectionWrapper::wsBNET_Close(int Index) {
    WriteChat(Index, Status::Error, QStringLiteral("[BNET] Disconnected!"));
    Bots(Index).setOnline(false);
    wsBNET(Index).Close();
    PluginHost::instance().SocketClose(Index);
    ScheduleReconnect(Index);
}

void ConnectionWrapper::wsBNET_Error(int Index, int Number, const QString& Description) {
    if (wsBNET(Index).State() == SocketControl::Error) SocketErrorText(0, Index, Number);
    BotElement& bot = Bots(Index);
    bot.setOnline(false);
    bot.CanConnect = true;
    bot.LastConnect = GetTickCount() + 30000;
    wsBNET(Index).Close();
    PluginHost::instance().SocketError(Index, Number, Description);
    ScheduleReconnect(Index);
}

void ConnectionWrapper::Handle_ForcedDisconnect(int Index, PacketReader&) {
    WriteChat(Index, Status::Error,
              QStringLiteral("[BNET] Disconnected from the server for flooding, you are probably "
                             "temporarily IP-banned also."));
    BotElement& bot = Bots(Index);
    bot.CanConnect = true;
    bot.LastConnect = GetTickCount() + 30000;
    bot.setOnline(false);
}

void ConnectionWrapper::dispatch(int Index, PacketReader& Reader, quint8 PacketID) {
    PluginHost::instance().PacketArrival(Index, Reader.ReadBuffer());
    switch (PacketID) {
    case 0x00: {
        PacketWriter writer;
        writer.SendPacket(Index, 0x00);
        break;
    }
    case 0x0A:
        Handle_EnterChat(Index, Reader);
        break;
    case 0x0B:
        Handle_ChannelList(Index, Reader);
        break;
    case 0x0F:
        Handle_ChatEvent(Index, Reader);
        break;
    case 0x13:
    case 0x19:
        Handle_ForcedDisconnect(Index, Reader);
        break;
    case 0x25:
        Handle_Ping(Index, Reader);
        break;
    case 0x26:
        Handle_ProfileKeys(Index, Reader);
        break;
    case 0x31:
        Handle_ChangePassword_OLS(Index, Reader);
        break;
    case 0x3A:
        Handle_LoginResponse_OLS(Index, Reader);
        break;
    case 0x3D:
        Handle_CreateAccount_OLS(Index, Reader.ReadDWORD());
        break;
    case 0x46:
        Handle_News(Index, Reader);
        break;
    case 0x4A:
        writeAdvancedWork(Index, Reader, "OptionalWork");
        break;
    case 0x4B:
        writeAdvancedWork(Index, Reader, "ExtraWork");
        break;
    case 0x4C:
        writeAdvancedWork(Index, Reader, "RequiredWork");
        break;
    case 0x50:
        Handle_AuthInfo(Index, Reader);
        break;
    case 0x51:
        Handle_AuthCheck(Index, Reader);
        break;
    case 0x52:
        Handle_CreateAccount_NLS(Index, Reader);
        break;
    case 0x53:
        Handle_LogonResponse_NLS(Index, Reader);
        break;
    case 0x54:
        Handle_LogonProof_NLS(Index, Reader);
        break;
    case 0x55:
        Handle_ChangePassword_NLS(Index, Reader);
        break;
    case 0x56:
        Handle_ChangeProof_NLS(Index, Reader);
        break;
    case 0x59:
        Handle_RegisterEmail(Index);
        break;
    case 0x65:
        Handle_FriendsList(Index, Reader);
        break;
    case 0x66: // a friend was removed
    case 0x68: // a friend was added
        Output_FriendsList(Index);
        break;
    case 0x67:
        Handle_FriendUpdate(Index, Reader);
        break;
    case 0x69:
        Handle_FriendPosition(Index, Reader);
        break;
    default:
        if (const PacketHandler* handler = FindPacketHandler(PacketID))
            (*handler)(Index, Reader, PacketID);
        else
            writeUnhandled(Index, PacketID, Reader.ReadBuffer());
        break;
    }
}

void ConnectionWrapper::wsBNLS_Connect(int Index) {
    const QString host = wsBNLS(Index).RemoteHost();
    rememberServer("Servers2", wsBNLS(Index), 9367);
    Bots(Index).InBNLS.clear();
    if (Logons(Index).VersionRefusal != 0) {
        Bnls0x10(Index);
        return;
    }
    WriteChat(Index, Status::Success,
              QStringLiteral("[BNLS] Connected to ") + host + QStringLiteral("!"));
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Connecting to Battle.net gateway..."));
    wsBNET(Index).Close();
    SlotTable::connectTo(wsBNET(Index), Bots(Index).Config.Server(), 6112);
}

void ConnectionWrapper::wsBNLS_DataArrival(int Index) {
    BotElement& bot = Bots(Index);
    bot.InBNLS.append(wsBNLS(Index).GetData());
    streamcutter::CutBNLS(bot.InBNLS, {[this, Index](PacketReader& reader, quint8 id) {
                                           if (id == 0x09 || id == 0x1A)
                                               Handle_BnlsVersionCheck(Index, reader);
                                           else if (id == 0x10)
                                               Handle_BnlsVersionByte(Index, reader);
                                       },
                                       {},
                                       [Index](quint8 id, const char*) {
                                           WriteChat(Index, Status::Error,
                                                     QStringLiteral("[BNLS] Dropped a malformed "
                                                                    "packet ") +
                                                         FormatHex(id, 2) +
                                                         QStringLiteral(" from the server."));
                                       },
                                       [this, Index](const QString& what) {
                                           bnlsProtocolError(Index, what);
                                       }});
}

void ConnectionWrapper::wsBNLS_Close(int Index) {
    wsBNLS(Index).Close();
    if (!inBnlsStep(Index)) return;
    WriteChat(Index, Status::Error, QStringLiteral("[BNLS] Disconnected!"));
    ScheduleReconnect(Index);
}

void ConnectionWrapper::wsBNLS_Error(int Index, int Number, const QString&) {
    if (wsBNLS(Index).State() == SocketControl::Error) SocketErrorText(1, Index, Number);
    wsBNLS(Index).Close();
    if (inBnlsStep(Index)) ScheduleReconnect(Index);
}
