#pragma once

struct CommandContext;

// Commands that show or drive the user's media player.
namespace mediacommands {

void Next(const CommandContext& c);
void Previous(const CommandContext& c);
void Play(const CommandContext& c);
void Pause(const CommandContext& c);
void Stop(const CommandContext& c);
void LoadPlayer(const CommandContext& c);
void UnloadPlayer(const CommandContext& c);
void Song(const CommandContext& c);
void SetPlayer(const CommandContext& c);

} // namespace mediacommands
