#pragma once

struct CommandContext;

// The "SET" commands: each checks its argument and writes one profile
// setting. A connection under way keeps its values until the next logon.
namespace settingcommands {

void ClearIdle(const CommandContext& c);
void SetHome(const CommandContext& c);
void SetAccount(const CommandContext& c);
void SetPassword(const CommandContext& c);
void SetTrigger(const CommandContext& c);
void SetServer(const CommandContext& c);
void SetServerBnls(const CommandContext& c);
void SetProduct(const CommandContext& c);
void SetCdkey(const CommandContext& c);
void SetCdkeyEx(const CommandContext& c);
void SetIdleTime(const CommandContext& c);
void SetIdle(const CommandContext& c);

} // namespace settingcommands
