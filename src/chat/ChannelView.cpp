#include "chat/ChannelView.h"

#include "chat/BotElement.h"
#include "platform/ListModel.h"
#include "platform/LowerCase.h"
#include "presentation/UserColors.h"
#include "presentation/Theme.h"
#include "presentation/UserIcons.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

namespace channelview {
namespace {

// Items are keyed by the lower-cased plain name of their user.
QString keyOf(const QString& plainName) {
    return LowerCase(plainName);
}

ListItem userItem(int Index, const QString& username, qint32 flags, qint32 ping,
                  const QString& statstring) {
    ListItem item;
    item.text = GetDisplayName(username);
    item.tag = username;
    item.key = keyOf(ConvertUsername(username, false, -1));
    item.color = GetUserColor(Index, ConvertUsername(username, false, -1), flags, false);
    item.subText = QString::number(ping);
    item.subTag = statstring;
    item.subColor = CurrentTheme().interface.ForeColor;
    GetUserIcons(Index, statstring, flags, ping, item.iconKey, item.subIconKey);
    return item;
}

} // namespace

void InsertUserItem(int Index, const QString& username, qint32 flags, qint32 ping,
                    const QString& statstring) {
    lvUsers(Index).add(userItem(Index, username, flags, ping, statstring), (flags & 0x03) ? 1 : 0);
}

void RemoveUserItems(int Index, const QString& plainName) {
    ListModel& list = lvUsers(Index);
    for (int row : list.rowsWithKey(keyOf(plainName)))
        list.removeAt(row);
}

bool UpdateUserItems(int Index, const QString& username, qint32 flags, qint32 ping,
                     const QString& statstring) {
    ListModel& list = lvUsers(Index);
    const std::vector<int> rows = list.rowsWithKey(keyOf(ConvertUsername(username, false, -1)));
    for (int row : rows)
        list.setItem(row, userItem(Index, username, flags, ping, statstring));
    return !rows.empty();
}

void RefreshUserLists() {
    SlotTable& table = SlotTable::instance();
    for (int slot = 1; slot <= table.highestIndex(); ++slot) {
        BotElement& bot = table.bot(slot);
        if (!bot.Online()) continue;
        ListModel& list = lvUsers(slot);
        for (int i = 1; i <= list.count(); ++i) {
            const int position = bot.UserFind(list.item(i).tag);
            if (position == 0) continue;
            const UserElement& user = bot.user(position);
            list.setItem(i,
                         userItem(slot, user.Username(), user.Flags, user.Ping, user.Statstring));
        }
    }
}

} // namespace channelview
