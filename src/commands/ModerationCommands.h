#pragma once

struct CommandContext;

// Commands that act on other users: bans, kicks and squelches that spare the
// userbase, local blocks, ranks, and what a user may make the bot say.
namespace moderationcommands {

void Ban(const CommandContext& c);
void Kick(const CommandContext& c);
void Ignore(const CommandContext& c);
void Block(const CommandContext& c);
void Unblock(const CommandContext& c);
void AddUser(const CommandContext& c);
void RemoveUser(const CommandContext& c);
void Say(const CommandContext& c);

} // namespace moderationcommands
