#pragma once

#include <QString>

// The items of a slot's user list as the chat events keep them: operators
// and representatives on top, everybody else in order of arrival.
namespace channelview {

// Operators and representatives go to the top, everybody else to the end.
void InsertUserItem(int Index, const QString& username, qint32 flags, qint32 ping,
                    const QString& statstring);
// Removes every item of that plain name, from the last to the first.
void RemoveUserItems(int Index, const QString& plainName);
// Refreshes every item of the user in place; false if there was none.
bool UpdateUserItems(int Index, const QString& username, qint32 flags, qint32 ping,
                     const QString& statstring);
// Works out every item of every online slot's user list anew, icons and
// colours, after a change of how they are drawn.
void RefreshUserLists();

} // namespace channelview
