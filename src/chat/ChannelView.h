#pragma once

#include <QString>

class ChatDocument;

// What the chat events show of a channel: the event lines in a view and the
// items of the user list, kept in the order operators first, then arrivals.
namespace channelview {

// An event line through the theme's template `key`.
void Show(int Index, ChatDocument& view, const QString& key, const QString& user,
          const QString& message, const QString& statstring = {}, qint32 ping = 0,
          qint32 flags = 0, const QString& channel = {}, qint32 channelFlags = 0);
// The name as the screen shows it.
QString DisplayName(int Index, const QString& username);
// A blocked user or a filtered text is neither shown nor answered.
bool IsHidden(int Index, const QString& plainName, const QString& text);
void RefreshAliasesAndGroups(int Index);

// Operators and representatives go to the top, everybody else to the end.
void InsertUserItem(int Index, const QString& username, qint32 flags, qint32 ping,
                    const QString& statstring);
// Removes every item of that plain name, from the last to the first.
void RemoveUserItems(int Index, const QString& plainName);
// Refreshes every item of the user in place; false if there was none.
bool UpdateUserItems(int Index, const QString& username, qint32 flags, qint32 ping,
                     const QString& statstring);

} // namespace channelview
