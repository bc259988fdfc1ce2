#include "commands/CommandContext.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "presentation/ChatWriter.h"
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

void CommandContext::notSaved(const QString& what, const QString& cause) const {
    WriteChat(Index, Status::Error, what + QStringLiteral(": ") + cause + u'.');
    if (!FromConsole) reply(what + u'.');
}
