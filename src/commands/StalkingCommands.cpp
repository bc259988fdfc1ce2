#include "commands/StalkingCommands.h"

#include "chat/BotElement.h"
#include "commands/CommandContext.h"
#include "platform/ListModel.h"
#include "session/SlotTable.h"
#include "social/FriendsList.h"

namespace stalkingcommands {

void Follow(const CommandContext& c) {
    // The friends list's answer tells where the stalked friend is.
    ForgetStalkedWhereabouts(c.Index);
    Bots(c.Index).Connection.Output_FriendsList(c.Index);
}

void Stalk(const CommandContext& c) {
    ConfigWrapper& config = Bots(c.Index).Config;
    const QString stalker =
        c.Rest.toUpper() == QLatin1String("/ME") ? c.Username : c.Rest.section(u' ', 0, 0);
    config.setStalker(stalker);
    if (config.Stalk())
        c.reply(QStringLiteral("The bot is now stalking '") + stalker + QStringLiteral("'."));
    else
        c.reply(QStringLiteral("The bot is now stalking '") + stalker +
                QStringLiteral("', however stalking is off, type ") + c.trigger() +
                QStringLiteral("stalking on."));
    // Only a friend's whereabouts are told, so the stalked user must be one.
    const ListModel& friends = lvFriends(c.Index);
    for (int i = 1; i <= friends.count(); ++i) {
        if (friends.item(i).text.compare(stalker, Qt::CaseInsensitive) == 0) return;
    }
    if (friends.count() < kFriendsLimit)
        c.queue(QStringLiteral("/f a ") + stalker);
    else
        c.reply(QStringLiteral(
            "Cannot add stalked user to friends list, friends list limit has been reached."));
}

void Stalking(const CommandContext& c) {
    ConfigWrapper& config = Bots(c.Index).Config;
    const QString option = c.Rest.toUpper();
    if (option == QLatin1String("ON")) {
        config.setStalk(true);
        if (!config.Stalker().isEmpty())
            c.reply(QStringLiteral("Stalking is set to on, bot is stalking ") + config.Stalker() +
                    u'.');
        else
            c.reply(QStringLiteral("Stalking is set to on, however the bot is not stalking anyone "
                                   "yet. Type ") +
                    c.trigger() + QStringLiteral("stalk <username> to stalk someone."));
    } else if (option == QLatin1String("OFF")) {
        config.setStalk(false);
        c.reply(QStringLiteral("Stalking is set to off."));
    } else {
        c.reply(QStringLiteral("Invalid stalking option, please use on/off or if you want to set "
                               "a user to stalk use the ") +
                c.trigger() + QStringLiteral("stalk <user> command."));
    }
}

} // namespace stalkingcommands
