#include "commands/CommandWrapper.h"

#include "commands/CommandContext.h"
#include "commands/DatabaseWrapper.h"
#include "commands/InformationCommands.h"
#include "commands/MediaCommands.h"
#include "commands/ModerationCommands.h"
#include "commands/SessionCommands.h"
#include "commands/SettingCommands.h"
#include "commands/StalkingCommands.h"
#include "commands/StoreCommands.h"
#include "statistics/UserNames.h"

#include <iterator>

namespace {

using namespace informationcommands;
using namespace mediacommands;
using namespace moderationcommands;
using namespace sessioncommands;
using namespace settingcommands;
using namespace stalkingcommands;
using namespace storecommands;

// Commands of one word. Rows run from the highest level down.
const CommandEntry kPlainCommands[] = {
    {100, {"QUIT"}, Quit},
    {100, {"HIDE"}, Hide},
    {100, {"SHOW"}, Show},
    {100, {"RECONNECT", "RC", "CONNECT"}, Reconnect},
    {90, {"DND"}, Dnd},
    {90, {"SETIDLE"}, ClearIdle},
    {90, {"NEXT"}, Next},
    {90, {"PREV", "PREVIOUS"}, Previous},
    {90, {"PLAY"}, Play},
    {90, {"PAUSE", "UNPAUSE"}, Pause},
    {90, {"STOP"}, Stop},
    {90, {"LOADPLAYER"}, LoadPlayer},
    {90, {"UNLOADPLAYER"}, UnloadPlayer},
    {80, {"HOME"}, Home},
    {80, {"REJOIN", "RJ"}, Rejoin},
    {80, {"RESIGN"}, Resign},
    {80, {"FOLLOW"}, Follow},
    {30, {"USERS"}, Users},
    {30, {"AWAY"}, Away},
    {30, {"RANDOMQUOTE"}, RandomQuote},
    {30, {"QUOTES"}, ListQuotes},
    {30, {"DEFS"}, ListDefinitions},
    {30, {"MP3", "SONG", "TRACK"}, Song},
    {10, {"UPTIME"}, Uptime},
    {10, {"CQ", "CLEARQ", "SCQ"}, sessioncommands::ClearQueue},
    {10, {"TIME", "DATE"}, Time},
    {10, {"WHERE"}, Where},
    {10, {"VER", "VERSION", "ABOUT"}, Version},
};

// Commands with an argument behind their blank.
const CommandEntry kArgumentCommands[] = {
    {90, {"DND"}, Dnd},
    {90, {"UNBAN", "U"}, Unban},
    {90, {"UNIGNORE", "UNSQUELCH"}, Unignore},
    {90, {"BAN", "B"}, Ban},
    {90, {"KICK", "K"}, Kick},
    {90, {"IGNORE", "SQUELCH", "I"}, Ignore},
    {90, {"BLOCK"}, Block},
    {90, {"UNBLOCK"}, Unblock},
    {90, {"JOIN", "J"}, Join},
    {90, {"FORCE"}, Force},
    {80, {"STALKING"}, Stalking},
    {80, {"STALK"}, Stalk},
    {70, {"ADD", "ADDUSER"}, moderationcommands::AddUser},
    {70, {"REMOVE", "REMOVEUSER"}, RemoveUser},
    {30, {"MACRO"}, Macro},
    {30, {"QUOTE", "ADDQUOTE"}, AddQuote},
    {30, {"REMOVEQUOTE"}, RemoveQuote},
    {30, {"GETQUOTE"}, GetQuote},
    {30, {"DEFINE", "ADDDEF"}, AddDefinition},
    {30, {"REMOVEDEF"}, RemoveDefinition},
    {30, {"GETDEF"}, GetDefinition},
    {20, {"MAIL", "ADDMAIL"}, storecommands::AddMail},
    {10, {"SAY"}, Say},
    {10, {"PING"}, Ping},
    {10, {"USERINFO"}, UserInfo},
    {10, {"FINDUSER", "FIND"}, FindUser},
    // Tried after everything else.
    {30, {"AWAY"}, Away},
};

// Words that begin with "SET" look only here.
const CommandEntry kSettingCommands[] = {
    {90, {"SETHOME"}, SetHome},
    {90, {"SETACCOUNT"}, SetAccount},
    {90, {"SETPASSWORD"}, SetPassword},
    {90, {"SETTRIGGER"}, SetTrigger},
    {90, {"SETSERVER"}, SetServer},
    {90, {"SETSERVERBNLS"}, SetServerBnls},
    {90, {"SETPRODUCT", "SETCLIENT"}, SetProduct},
    {90, {"SETCDKEY"}, SetCdkey},
    {90, {"SETCDKEYEX"}, SetCdkeyEx},
    {90, {"SETIDLETIME"}, SetIdleTime},
    {90, {"SETIDLE"}, SetIdle},
    {90, {"SETPLAYER"}, mediacommands::SetPlayer},
};

bool reaches(qint32 rank, qint32 level) {
    return level == 100 ? rank == 100 : rank >= level;
}

bool names(const CommandEntry& entry, const QString& word) {
    for (const char* name : entry.words)
        if (name && word == QLatin1String(name)) return true;
    return false;
}

} // namespace

bool CommandWrapper::SearchCommands(int Index, QString Username, const QString& Message,
                                    bool FromConsole) {
    qint32 rank = 100;
    if (!Username.isEmpty() && !FromConsole) {
        Username = ConvertUsername(Username, false, -1);
        rank = 0;
        DatabaseWrapper().GrabRank(Index, Username, rank);
    }
    if (rank <= 0 || Message.size() < 2) return false;
    if (Message.contains(u' '))
        return RunArgumentCommand(Index, Username, Message, rank, FromConsole);
    return RunPlainCommand(Index, Username, Message, rank, FromConsole);
}

bool CommandWrapper::RunPlainCommand(int Index, const QString& Username, const QString& Message,
                                     qint32 Rank, bool FromConsole) {
    const CommandContext context{Index, Username, {}, false, Rank, FromConsole};
    return runFromTable(kPlainCommands, std::size(kPlainCommands), Message.toUpper(), context);
}

bool CommandWrapper::RunArgumentCommand(int Index, const QString& Username, const QString& Message,
                                        qint32 Rank, bool FromConsole) {
    const qsizetype blank = Message.indexOf(u' ');
    const QString word = Message.left(blank).toUpper();
    const CommandContext context{Index, Username, Message.mid(blank + 1), true, Rank, FromConsole};
    if (word.startsWith(QLatin1String("SET")))
        return runFromTable(kSettingCommands, std::size(kSettingCommands), word, context);
    return runFromTable(kArgumentCommands, std::size(kArgumentCommands), word, context);
}

bool CommandWrapper::runFromTable(const CommandEntry* table, size_t rows, const QString& word,
                                  const CommandContext& context) {
    for (size_t row = 0; row < rows; ++row) {
        const CommandEntry& entry = table[row];
        if (!reaches(context.Rank, entry.level) || !names(entry, word)) continue;
        entry.action(context);
        return true;
    }
    return false;
}
