// The way into chat after the logon, and the small packets that keep a
// session alive.
#include "chat/BotElement.h"
#include "config/SettingsWrapper.h"
#include "platform/Cp1252.h"
#include "platform/TickCount.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

namespace {

void sendPing(int Index, quint32 value = 0) {
    PacketWriter w;
    w.WriteDWORD(value);
    w.SendPacket(Index, 0x25);
}

void sendEmptyFrames(int Index, int count) {
    PacketWriter w;
    for (int i = 0; i < count; ++i)
        w.SendPacket(Index, 0x00);
}

} // namespace

void ConnectionWrapper::SendPingSpoof(int Index) {
    switch (Bots(Index).Config.PingSpoof()) {
    case 0:
    case 2:
        sendPing(Index);
        break;
    case 3:
        sendEmptyFrames(Index, 713);
        sendPing(Index);
        break;
    case 4:
        sendEmptyFrames(Index, 7713);
        sendPing(Index);
        break;
    default:
        break; // negative: no ping at all
    }
}

void ConnectionWrapper::Handle_Ping(int Index, PacketReader& Reader) {
    const qint32 spoof = Bots(Index).Config.PingSpoof();
    if (spoof != 0 && spoof != 4) return;
    // The answer carries the server's own value back, as game clients do:
    // servers match it to their ping and time the round trip from it, so an
    // answer of 0 would show the bot at a spoofed 0 ms.
    const quint32 value = Reader.DataLength() >= 8 ? Reader.ReadDWORD() : 0;
    sendPing(Index, value);
}

void ConnectionWrapper::Output_Login(int Index) {
    if (UsesNewLogon(Bots(Index).Config.Client())) {
        Output_AuthLogon_NLS(Index);
    } else {
        Output_UDP(Index);
        Output_AuthLogon_OLS(Index);
    }
}

void ConnectionWrapper::Output_EnterChat(int Index) {
    const ConfigWrapper& config = Bots(Index).Config;
    WriteChat(Index, Status::Information,
              QStringLiteral("[BNET] Logon passed, attempting to enter chat.."));
    PacketWriter w;
    w.WriteSTRING(config.Account());
    w.WriteBYTE(0);
    w.SendPacket(Index, 0x0A);
    w.WriteDWORD(0);
    w.SendPacket(Index, 0x0B);
    const QString home = config.Channel();
    if (home.isEmpty()) {
        w.WriteDWORD(1);
        w.WriteSTRING(QStringLiteral("The Void"));
    } else {
        w.WriteDWORD(2);
        w.WriteSTRING(home);
    }
    w.SendPacket(Index, 0x0C);
}

void ConnectionWrapper::Output_JoinChannel(int Index, const QString& Channel) {
    PacketWriter w;
    w.SendPacket(Index, 0x10);
    w.WriteDWORD(2);
    w.WriteSTRING(Channel);
    w.SendPacket(Index, 0x0C);
}

void ConnectionWrapper::Handle_EnterChat(int Index, PacketReader& Reader) {
    BotElement& bot = Bots(Index);
    const SettingsWrapper& settings = SettingsWrapper::instance();
    if (settings.ShowConnectTime()) {
        WriteChat(Index, Status::Success,
                  QStringLiteral("[BNET] Connection took: ") +
                      QString::number(TicksSince(bot.LastConnect)) + QStringLiteral("ms"));
    }
    bot.UniqueAccount = Reader.ReadSTRING();
    bot.MyStatstring = Reader.ReadSTRING();
    bot.setOnline(true);
    bot.OnlineTick = GetTickCount();
    bot.Reconnect.reachedChat(bot.OnlineTick);
    PacketWriter w;
    if (settings.RequestKeys()) Output_AccountInfoRequest(Index);
    w.SendPacket(Index, 0x65);
    if (settings.RequestNews()) {
        w.WriteDWORD(0);
        w.SendPacket(Index, 0x46);
    }
    PluginHost::instance().DispatchChatEvent(Index, 253, bot.UniqueAccount, bot.MyStatstring, 0, 0);
}

void ConnectionWrapper::Handle_ChannelList(int Index, PacketReader& Reader) {
    BotElement& bot = Bots(Index);
    bot.ClearChannels();
    for (const QByteArray& name : Reader.ReadBuffer().mid(4).split('\0')) {
        if (!name.isEmpty()) bot.Channels << cp1252::decode(name);
    }
    SlotTable::instance().notifyChannelList(Index);
}

void ConnectionWrapper::Handle_News(int Index, PacketReader& Reader) {
    if (!SettingsWrapper::instance().RequestNews()) return;
    BotElement& bot = Bots(Index);
    const int entries = Reader.ReadBYTE();
    Reader.Skip(12);
    for (int i = 0; i < entries; ++i) {
        Reader.Skip(4);
        const QString text = Reader.ReadSTRING();
        const bool muted = text.contains(QLatin1String("muted"));
        const bool suspended = text.contains(QLatin1String("suspended"));
        if (muted && !suspended) {
            bot.CdkeyStatus = QStringLiteral("Muted");
            WriteChat(Index, Status::Error, QStringLiteral("[BNET] Your CD-Key is muted."));
        } else if (muted && suspended) {
            bot.CdkeyStatus = QStringLiteral("Jailed");
            WriteChat(Index, Status::Error, QStringLiteral("[BNET] Your CD-Key is jailed."));
        }
        if (text.contains(QLatin1String("Welcome to Battle.net")) && bot.CdkeyStatus.isEmpty()) {
            bot.CdkeyStatus = QStringLiteral("Working");
            WriteChat(Index, Status::Information, QStringLiteral("[BNET] Your CD-Key is working."));
        }
    }
}
