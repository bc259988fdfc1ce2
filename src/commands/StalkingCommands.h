#pragma once

struct CommandContext;

// Commands that follow a friend from channel to channel.
namespace stalkingcommands {

void Follow(const CommandContext& c);
void Stalk(const CommandContext& c);
void Stalking(const CommandContext& c);

} // namespace stalkingcommands
