#include "chat/ChannelView.h"

#include "chat/BotElement.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "presentation/ChatWriter.h"
#include "presentation/UserIcons.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

namespace channelview {
namespace {

ListItem userItem(int Index, const QString& username, qint32 flags, qint32 ping,
                  const QString& statstring) {
    ListItem item;
    item.text = DisplayName(Index, username);
    item.tag = username;
    item.color = (flags & 0x03) ? 0xFFFF00 : 0x00FFFF;
    item.subText = QString::number(ping);
    GetUserIcons(Index, statstring, flags, ping, item.iconKey, item.subIconKey);
    return item;
}

QString eventText(const QString& key, const QString& user, const QString& message,
                  const QString& statstring, qint32 ping, const QString& channel) {
    if (key == QLatin1String("talk")) return u'<' + user + QStringLiteral("> ") + message;
    if (key == QLatin1String("emote")) return u'<' + user + QStringLiteral(" ") + message + u'>';
    if (key == QLatin1String("whisperfrom"))
        return QStringLiteral("<From: ") + user + QStringLiteral("> ") + message;
    if (key == QLatin1String("whisperto"))
        return QStringLiteral("<To: ") + user + QStringLiteral("> ") + message;
    if (key == QLatin1String("join"))
        return user + QStringLiteral(" has joined using ") + statstring.left(4) +
               QStringLiteral(", with ping of ") + QString::number(ping) + u'.';
    if (key == QLatin1String("present"))
        return user + QStringLiteral(" is present, with ping of ") + QString::number(ping) + u'.';
    if (key == QLatin1String("leave")) return user + QStringLiteral(" has left the channel.");
    if (key == QLatin1String("channeljoined")) return QStringLiteral("Joined channel: ") + channel;
    if (key == QLatin1String("broadcast")) return QStringLiteral("[Broadcast] ") + message;
    return message;
}

} // namespace

void Show(int Index, ChatDocument& view, const QString& key, const QString& user,
          const QString& message, const QString& statstring, qint32 ping, qint32,
          const QString& channel, qint32) {
    const QString text = eventText(key, user, message, statstring, ping, channel);
    if (&view == &rtbChat(Index))
        WriteChat(Index, {{0xFFFFFF, text}});
    else
        WriteChatView(view, {{0xFFFFFF, text + QStringLiteral("\r\n")}});
}

QString DisplayName(int, const QString& username) {
    if (SettingsWrapper::instance().HideChars()) return ConvertUsername(username, false, -1);
    return username;
}

bool IsHidden(int, const QString&, const QString&) {
    return false;
}

void RefreshAliasesAndGroups(int) {}

void InsertUserItem(int Index, const QString& username, qint32 flags, qint32 ping,
                    const QString& statstring) {
    lvUsers(Index).add(userItem(Index, username, flags, ping, statstring), (flags & 0x03) ? 1 : 0);
}

void RemoveUserItems(int Index, const QString& plainName) {
    ListModel& list = lvUsers(Index);
    for (int i = list.count(); i >= 1; --i) {
        if (ConvertUsername(list.item(i).tag, false, -1).compare(plainName, Qt::CaseInsensitive) ==
            0)
            list.removeAt(i);
    }
}

bool UpdateUserItems(int Index, const QString& username, qint32 flags, qint32 ping,
                     const QString& statstring) {
    ListModel& list = lvUsers(Index);
    const QString plain = ConvertUsername(username, false, -1);
    bool found = false;
    for (int i = list.count(); i >= 1; --i) {
        if (ConvertUsername(list.item(i).tag, false, -1).compare(plain, Qt::CaseInsensitive) != 0)
            continue;
        list.setItem(i, userItem(Index, username, flags, ping, statstring));
        found = true;
    }
    return found;
}

} // namespace channelview
