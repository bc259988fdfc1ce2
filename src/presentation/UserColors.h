#pragma once

#include <QString>

// The colour of a user in slot `slot`: `InChat` picks the theme's colours for
// names in the chat text, otherwise those of the user list. The first rule
// that holds decides: the bot's own account, the blocked list, flags 0x01,
// 0x20 and 0x02, a group with a colour, twenty and ten minutes of silence.
quint32 GetUserColor(int slot, const QString& user, qint32 flags, bool InChat);

// Works out the colour of every item of a slot's user list anew; items whose
// user has left the channel keep theirs.
void RecolorUserList(int slot);
// The same for every profile that is online.
void RecolorUserLists();
