#include "chat/BotElement.h"
#include "platform/TickCount.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

void ConnectionWrapper::Output_ProfileRequest(int Index, const QString& Account) {
    BotElement& bot = Bots(Index);
    // The reply carries no name: LastProfile tells whose it is.
    bot.LastProfile = Account;
    bot.ProfileType = 0;
    PacketWriter w;
    w.WriteDWORD(1);
    w.WriteDWORD(3);
    w.WriteDWORD(GetTickCount());
    w.WriteSTRING(Account);
    w.WriteSTRING(QStringLiteral("profile\\sex"));
    w.WriteSTRING(QStringLiteral("profile\\location"));
    w.WriteSTRING(QStringLiteral("profile\\description"));
    w.SendPacket(Index, 0x26);
}
