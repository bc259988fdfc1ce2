#include "commands/CommandContext.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "session/SlotTable.h"

void CommandContext::reply(const QString& text) const {
    SendCommandReply(Index, FromConsole, text);
}

void CommandContext::queue(const QString& text) const {
    Bots(Index).Queue.append(text);
}

QString CommandContext::trigger() const {
    return Bots(Index).Config.Trigger();
}
