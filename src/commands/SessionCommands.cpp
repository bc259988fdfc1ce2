#include "commands/SessionCommands.h"

#include "chat/BotElement.h"
#include "commands/CommandContext.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"

namespace sessioncommands {
namespace {

// "/word" alone for a plain command, "/word " + rest for the argument form
// (where the rest may be empty: "dnd " queues "/dnd ").
void queueServerCommand(const CommandContext& c, const char* word, bool withRest) {
    QString line = QLatin1String(word);
    if (withRest) line += u' ' + c.Rest;
    c.queue(line);
}

} // namespace

void Quit(const CommandContext&) {
    DesktopShell::instance().requestQuit();
}

void Hide(const CommandContext&) {
    DesktopShell::instance().hideWindow();
}

void Show(const CommandContext&) {
    DesktopShell::instance().showWindow();
}

void Reconnect(const CommandContext& c) {
    SlotTable::instance().ConnectBot(c.Index);
}

void Home(const CommandContext& c) {
    c.queue(QStringLiteral("/join ") + Bots(c.Index).Config.Channel());
}

void Rejoin(const CommandContext& c) {
    BotElement& bot = Bots(c.Index);
    bot.Connection.Output_JoinChannel(c.Index, bot.ChannelNonVoid());
}

void ClearQueue(const CommandContext& c) {
    Bots(c.Index).ClearQueue();
}

void Force(const CommandContext& c) {
    // Leaves chat and joins past the queue, as a rejoin does.
    Bots(c.Index).Connection.Output_JoinChannel(c.Index, c.Rest);
}

void Dnd(const CommandContext& c) {
    queueServerCommand(c, "/dnd", c.Argument);
}

void Resign(const CommandContext& c) {
    queueServerCommand(c, "/resign", false);
}

void Away(const CommandContext& c) {
    queueServerCommand(c, "/away", c.Argument);
}

void Unban(const CommandContext& c) {
    queueServerCommand(c, "/unban", true);
}

void Unignore(const CommandContext& c) {
    queueServerCommand(c, "/unignore", true);
}

void Join(const CommandContext& c) {
    queueServerCommand(c, "/join", true);
}

} // namespace sessioncommands
