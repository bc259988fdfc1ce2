#pragma once

#include <QString>
#include <QStringList>

// The clan typed behind "/myclan" in the input box or on the terminal: all
// the clan panel and the clan list's menu do, one word each. The bot answers
// them itself; "/clan" is left to the servers, which have their own.
namespace ClanCommands {

// The local word the commands stand behind.
inline constexpr char kWord[] = "/myclan";

// Runs "/myclan" with the words behind it.
void Run(int Index, const QString& Rest);
// One line per command: its form, then what it does.
QStringList Usage();

} // namespace ClanCommands
