#include "session/PacketHandlers.h"

#include <array>

namespace {

std::array<PacketHandler, 256>& handlers() {
    static std::array<PacketHandler, 256> table;
    return table;
}

} // namespace

void SetPacketHandler(quint8 PacketID, PacketHandler Handler) {
    handlers()[PacketID] = std::move(Handler);
}

const PacketHandler* FindPacketHandler(quint8 PacketID) {
    const PacketHandler& h = handlers()[PacketID];
    return h ? &h : nullptr;
}
