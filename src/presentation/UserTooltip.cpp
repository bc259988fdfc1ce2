#include "presentation/UserTooltip.h"

#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "platform/TickCount.h"
#include "presentation/TextFormat.h"
#include "session/SlotTable.h"
#include "statistics/FlagNames.h"
#include "statistics/NameFormat.h"
#include "statistics/Statstring.h"

std::optional<UserTooltip> BuildUserTooltip(int Index, const QString& Username) {
    BotElement& bot = Bots(Index);
    const int position = bot.UserFind(Username);
    if (position == 0) return std::nullopt;
    const UserElement& user = bot.user(position);

    QString clan;
    const QString description = ParseStatstring(user.Statstring, true, clan);
    // The statistics are what the description holds in its brackets.
    QString statistics;
    const qsizetype bracket = description.indexOf(QLatin1String(" ("));
    if (bracket >= 0) {
        statistics = description.mid(bracket + 2);
        statistics.chop(1);
    }
    const QString group = FindGroup(user.UsernameFixed);

    UserTooltip tip;
    tip.title = user.UsernameFixed;
    if (!clan.isEmpty()) tip.lines << QStringLiteral("Member of: Clan ") + clan;
    tip.lines << QStringLiteral("Flags: ") + FormatHex(quint32(user.Flags), 2) +
                     QStringLiteral("   (") + GetUserFlagNames(quint32(user.Flags)) + u')';
    if (!group.isEmpty()) tip.lines << QStringLiteral("Group: ") + group;
    tip.lines << QStringLiteral("Ping: ") + QString::number(user.Ping) + QStringLiteral("ms   (") +
                     GetPingStatus(user.Ping) + QStringLiteral(", ") + GetPingIcon(user.Ping) +
                     u')';
    tip.lines << QStringLiteral("Product: ") + ParseStatstring(user.Statstring, false);
    if (!statistics.isEmpty()) tip.lines << QStringLiteral("Stats: ") + statistics;
    tip.lines << QStringLiteral("Uptime: ") + FormatUptime(TicksSince(user.Uptime));
    return tip;
}
