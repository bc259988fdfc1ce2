#pragma once

struct CommandContext;

// Commands that act on the program or the slot's connection, or that put a
// server command on the send queue.
namespace sessioncommands {

void Quit(const CommandContext& c);
void Hide(const CommandContext& c);
void Show(const CommandContext& c);
void Reconnect(const CommandContext& c);
void Home(const CommandContext& c);
void Rejoin(const CommandContext& c);
void ClearQueue(const CommandContext& c);
void Force(const CommandContext& c);

// Server commands queued as "/word" or, with an argument, "/word " + rest.
void Dnd(const CommandContext& c);
void Resign(const CommandContext& c);
void Away(const CommandContext& c);
void Unban(const CommandContext& c);
void Unignore(const CommandContext& c);
void Join(const CommandContext& c);

} // namespace sessioncommands
