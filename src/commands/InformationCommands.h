#pragma once

struct CommandContext;

// Commands that tell something: about the channel, its users, the userbase,
// the clocks and the program.
namespace informationcommands {

void Users(const CommandContext& c);
void Uptime(const CommandContext& c);
void Time(const CommandContext& c);
void Where(const CommandContext& c);
void Version(const CommandContext& c);
void Ping(const CommandContext& c);
void UserInfo(const CommandContext& c);
void FindUser(const CommandContext& c);

} // namespace informationcommands
