#pragma once

#include <QString>

// The account's Battle.net friends in lvFriends of a slot, kept as the server
// reports them, and the following of one of them (stalking): where the
// stalked friend goes, the bot joins.

// One friend record from the server. Status 0 online, 1 mutual, 2 do not
// disturb, 4 away; Location 0 offline, 1 not in chat, 2 in a channel, 3 in a
// public game, 4 in a private game (not mutual), 5 in a private game
// (mutual). Product is the code as the protocol's DWORD holds it.
struct FriendRecord {
    QString Account;
    quint8 Status = 0;
    quint8 Location = 0;
    quint32 Product = 0;
    QString LocationName;
};

// Puts the friend at the end of the list, replacing any item of the name.
void UpdateFriend(int Index, const FriendRecord& Friend);
// The next record of the stalked friend is followed even when it tells the
// place the bot last heard of (FOLLOW asks for it by hand).
void ForgetStalkedWhereabouts(int Index);
// Moves an item; positions counted from 1.
void MoveFriendPosition(int Index, int OldPosition, int NewPosition);
// The friends list can hold no more than this.
constexpr int kFriendsLimit = 25;
