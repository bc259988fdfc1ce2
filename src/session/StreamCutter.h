#pragma once

#include "session/PacketReader.h"
#include "session/StreamBuffer.h"

#include <functional>

// Cuts the byte streams of the two sockets into frames.
//
// A frame whose length field is below the minimum stops the cutting and stays
// at the head: that stream is stuck until the slot is emptied, as the protocol
// code has always behaved. A frame waits while the buffer holds too few bytes,
// and a Battle.net frame of 4 or 5 bytes waits alone for the next data.
namespace streamcutter {

// Handed the reader standing on the first payload byte, and the packet id.
using FrameHandler = std::function<void(PacketReader& reader, quint8 id)>;
using BadMarkerHandler = std::function<void(quint8 marker)>;
// A handler read past the end of its frame: the frame is dropped.
using MalformedHandler = std::function<void(quint8 id, const char* what)>;

// Thrown by a frame handler to end the data event at once, with its frame
// left at the head of the stream for the next event to find again.
struct StopCutting {};

struct Handlers {
    FrameHandler frame;
    BadMarkerHandler badMarker;
    MalformedHandler malformed;
};

void CutBNCS(StreamBuffer& in, const Handlers& handlers);
void CutBNLS(StreamBuffer& in, const Handlers& handlers);

} // namespace streamcutter
