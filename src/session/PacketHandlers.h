#pragma once

#include <QtGlobal>
#include <functional>

class PacketReader;

// Packets that subsystems above the session core take over (the clans): they
// add their handlers at start, and the dispatch hands such a frame on instead
// of reporting it unhandled. The core stays unaware of who handles them.
using PacketHandler = std::function<void(int Index, PacketReader& Reader, quint8 PacketID)>;
void SetPacketHandler(quint8 PacketID, PacketHandler Handler);
// Null when nobody took the id.
const PacketHandler* FindPacketHandler(quint8 PacketID);
