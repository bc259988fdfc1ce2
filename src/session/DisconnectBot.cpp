#include "session/DisconnectBot.h"

#include "chat/BotElement.h"
#include "session/SlotTable.h"

void DisconnectBot(int Index) {
    if (Index <= 0) return;
    BotElement& bot = Bots(Index);
    bot.CanConnect = false;
    bot.setOnline(false);
    bot.Connection.KillSocket(Index);
}
