#include "platform/ListModel.h"
#include "session/ConnectionWrapper.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "social/FriendsList.h"

namespace {

FriendRecord readFriend(PacketReader& Reader) {
    FriendRecord f;
    f.Account = Reader.ReadSTRING();
    f.Status = Reader.ReadBYTE();
    f.Location = Reader.ReadBYTE();
    f.Product = Reader.ReadDWORD();
    f.LocationName = Reader.ReadSTRING();
    return f;
}

} // namespace

void ConnectionWrapper::Output_FriendsList(int Index) {
    PacketWriter w;
    w.SendPacket(Index, 0x65);
}

void ConnectionWrapper::Handle_FriendsList(int Index, PacketReader& Reader) {
    const int count = Reader.ReadBYTE();
    lvFriends(Index).clear();
    for (int i = 0; i < count; ++i)
        UpdateFriend(Index, readFriend(Reader));
}

void ConnectionWrapper::Handle_FriendUpdate(int Index, PacketReader& Reader) {
    UpdateFriend(Index, readFriend(Reader));
}

void ConnectionWrapper::Handle_FriendPosition(int Index, PacketReader& Reader) {
    const int from = Reader.ReadBYTE();
    const int to = Reader.ReadBYTE();
    MoveFriendPosition(Index, from + 1, to + 1);
}
