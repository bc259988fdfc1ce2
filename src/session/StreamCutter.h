#pragma once

#include "session/PacketReader.h"
#include "session/StreamBuffer.h"

#include <QString>

#include <functional>

// Cuts the byte streams of the two sockets into frames.
//
// A frame whose length field is below the minimum, or a second frame in a row
// without the Battle.net marker, means the stream has lost its frame
// boundaries: nothing after it can be trusted, so the cutting stops there and
// the protocol error is handed to the owner, who ends the connection. (Left
// stuck, the slot would look online while it hears nothing more.) A frame
// waits while the buffer holds too few bytes, and a Battle.net frame of 4 or 5
// bytes waits alone for the next data.
namespace streamcutter {

// Handed the reader standing on the first payload byte, and the packet id.
using FrameHandler = std::function<void(PacketReader& reader, quint8 id)>;
using BadMarkerHandler = std::function<void(quint8 marker)>;
// A handler read past the end of its frame: the frame is dropped.
using MalformedHandler = std::function<void(quint8 id, const char* what)>;

// Thrown by a frame handler to end the data event at once, with its frame
// left at the head of the stream for the next event to find again.
struct StopCutting {};

// The stream cannot be cut any further; `what` tells why, in words for the user.
using ProtocolErrorHandler = std::function<void(const QString& what)>;

struct Handlers {
    FrameHandler frame;
    BadMarkerHandler badMarker;
    MalformedHandler malformed;
    ProtocolErrorHandler protocolError;
};

void CutBNCS(StreamBuffer& in, const Handlers& handlers);
void CutBNLS(StreamBuffer& in, const Handlers& handlers);

} // namespace streamcutter
