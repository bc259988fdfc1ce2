#include "social/FriendsList.h"

#include "chat/BotElement.h"
#include "platform/ListModel.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "presentation/UserIcons.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"

#include <QHash>

namespace {

// The four letters of a product code from the DWORD that carries it.
QString productCode(quint32 product) {
    QString code;
    for (int shift = 24; shift >= 0; shift -= 8)
        code += QChar(char16_t((product >> shift) & 0xFF));
    return code;
}

void setStatus(ListItem& item, quint8 status) {
    const auto set = [&](Status colour, const char* words) {
        item.color = StatusColor(colour);
        item.toolTip = item.text + QLatin1String(words);
    };
    switch (status) {
    case 0:
        set(Status::Information, " is online.");
        break;
    case 1:
        set(Status::Success, " is a mutual friend.");
        break;
    case 2:
        set(Status::Error, " is in dnd mode.");
        break;
    case 4:
        set(Status::Information, " is away.");
        break;
    default:
        break; // a combination of states: no colour, no words
    }
}

void setLocation(ListItem& item, quint8 location, const QString& name) {
    const auto set = [&](const QString& text, const QString& tip) {
        item.subText = text;
        item.subToolTip = tip;
    };
    switch (location) {
    case 0:
        item.color = CurrentTheme().interface.ForeColor;
        item.toolTip = item.text + QStringLiteral(" is offline.");
        break;
    case 1:
        set(QStringLiteral("Not in chat"), QStringLiteral("Not in chat."));
        break;
    case 2: {
        const QString text =
            name.isEmpty() ? QStringLiteral("Private Channel") : QStringLiteral("Channel: ") + name;
        set(text, text);
        break;
    }
    case 3:
        set(QStringLiteral("Game: ") + name, QStringLiteral("Public Game: ") + name);
        break;
    case 4:
        set(QStringLiteral("Private Game"), QStringLiteral("Private Game"));
        break;
    case 5:
        set(QStringLiteral("Game: ") + name, QStringLiteral("Private Game: ") + name);
        break;
    default:
        break;
    }
}

void stalkingOff(int Index) {
    Bots(Index).Config.setStalk(false);
}

void warn(int Index, const QString& text) {
    WriteChat(Index, Status::Warning, text);
}

// Where the stalked friend went decides what the bot does.
void followStalked(int Index, const FriendRecord& f) {
    BotElement& bot = Bots(Index);
    const QString& where = f.LocationName;
    switch (f.Location) {
    case 0:
        warn(Index, f.Account + QStringLiteral(" cannot be stalked this user is offline, however "
                                               "stalking is still on incase they return."));
        break;
    case 2:
        if (where.isEmpty()) {
            WriteChat(Index, {{255, f.Account + QStringLiteral(" is not a mutual friend, this "
                                                               "user cannot be stalked!")}});
            WriteChat(Index, {{0xFFFF00, QStringLiteral("Stalking is now off.")}});
            stalkingOff(Index);
            break;
        }
        if (where.toLower() != bot.Channel().toLower()) {
            warn(Index, QStringLiteral("Attempting to follow/stalk user ") + bot.Config.Stalker() +
                            QStringLiteral(".."));
            bot.Queue.append(QStringLiteral("/join ") + where);
        }
        DesktopShell::instance().copyToClipboard(where);
        break;
    case 3:
        warn(Index, QStringLiteral("Stalked user (") + f.Account +
                        QStringLiteral(") has joined a public game, game name has been copied to "
                                       "clipboard."));
        DesktopShell::instance().copyToClipboard(where);
        break;
    case 4:
        warn(Index, QStringLiteral("Stalked user (") + f.Account +
                        QStringLiteral(") has joined a private game, you are not a mutual "
                                       "friend, stalking will be disabled!"));
        stalkingOff(Index);
        break;
    case 5:
        warn(Index, QStringLiteral("Stalked user (") + f.Account +
                        QStringLiteral(") has joined a private game, game name has been copied "
                                       "to clipboard."));
        DesktopShell::instance().copyToClipboard(where);
        break;
    default:
        break;
    }
}

bool isStalked(int Index, const QString& account) {
    const ConfigWrapper& config = Bots(Index).Config;
    return config.Stalk() && config.Stalker().toLower() == account.toLower();
}

// Where the stalked friend was last heard to be, in the session of the slot.
struct Whereabouts {
    QString account;
    quint8 location = 0;
    QString where;
    quint32 session = 0;

    bool operator==(const Whereabouts&) const = default;
};

QHash<int, Whereabouts>& lastHeard() {
    static QHash<int, Whereabouts> bySlot;
    return bySlot;
}

// One hop reaches the bot as several records telling the same place (friend
// updates and the list asked on the friend's leave): only the first moves it.
bool isNews(int Index, const FriendRecord& f) {
    const Whereabouts now{f.Account.toLower(), f.Location, f.LocationName.toLower(),
                          Bots(Index).OnlineTick};
    Whereabouts& last = lastHeard()[Index];
    if (last == now) return false;
    last = now;
    return true;
}

} // namespace

void UpdateFriend(int Index, const FriendRecord& Friend) {
    ListModel& friends = lvFriends(Index);
    for (int i = friends.count(); i >= 1; --i) {
        // Names are one account in any case, as the removal of a friend has it.
        if (friends.item(i).tag.compare(Friend.Account, Qt::CaseInsensitive) == 0)
            friends.removeAt(i);
    }
    ListItem item = ListItem::withText(Friend.Account);
    item.tag = Friend.Account;
    item.iconKey = FindIcon(productCode(Friend.Product));
    setStatus(item, Friend.Status);
    setLocation(item, Friend.Location, Friend.LocationName);
    friends.add(item);
    if (isStalked(Index, Friend.Account) && isNews(Index, Friend)) followStalked(Index, Friend);
}

void ForgetStalkedWhereabouts(int Index) {
    lastHeard().remove(Index);
}

void MoveFriendPosition(int Index, int OldPosition, int NewPosition) {
    ListModel& friends = lvFriends(Index);
    if (OldPosition < 1 || OldPosition > friends.count()) return;
    const ListItem item = friends.item(OldPosition);
    friends.removeAt(OldPosition);
    friends.add(item, NewPosition);
}
