#include "presentation/UserColors.h"

#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

namespace {

constexpr quint32 kTenMinutes = 600000;
constexpr quint32 kTwentyMinutes = 1200000;

} // namespace

quint32 GetUserColor(int slot, const QString& user, qint32 flags, bool InChat) {
    const UserColors& c = InChat ? CurrentTheme().userInChat : CurrentTheme().userList;
    SlotTable& table = SlotTable::instance();
    BotElement* bot = slot >= 0 && slot <= table.highestIndex() ? &table.bot(slot) : nullptr;
    const QString plain = ConvertUsername(user, false, -1);

    if (bot && !bot->UniqueAccount.isEmpty() &&
        plain.compare(ConvertUsername(bot->UniqueAccount, false, -1), Qt::CaseInsensitive) == 0)
        return c.Yourself;
    if (IsBlocked(plain)) return c.Blocked;
    if (flags & 0x01) return c.BlizzardRep;
    if (flags & 0x20) return c.Squelched;
    if (flags & 0x02) return c.Moderator;
    const QString group = FindGroup(plain);
    if (!group.isEmpty()) {
        const qint32 color = GetGroupColor(group);
        if (color != -1) return quint32(color);
    }
    if (bot) {
        if (const int position = bot->UserFind(plain); position > 0) {
            const quint32 silent = TicksSince(bot->user(position).LastAction);
            if (silent >= kTwentyMinutes) return c.Idle_20min;
            if (silent >= kTenMinutes) return c.Idle_10min;
        }
    }
    return c.Normal;
}

void RecolorUserList(int slot) {
    SlotTable& table = SlotTable::instance();
    if (slot < 0 || slot > table.highestIndex()) return;
    ListModel& list = table.users(slot);
    BotElement& bot = table.bot(slot);
    for (int i = 1; i <= list.count(); ++i) {
        const int position = bot.UserFind(list.item(i).tag);
        if (position == 0) continue;
        const UserElement& user = bot.user(position);
        const quint32 color = GetUserColor(slot, user.UsernameFixed, user.Flags, false);
        if (list.item(i).color != color) {
            ListItem item = list.item(i);
            item.color = color;
            list.setItem(i, item);
        }
    }
}

void RecolorUserLists() {
    SlotTable& table = SlotTable::instance();
    for (int slot = 1; slot <= table.highestIndex(); ++slot) {
        if (table.bot(slot).Online()) RecolorUserList(slot);
    }
}
