#include "session/StreamCutter.h"

namespace streamcutter {
namespace {

// False when the handler asked to stop with its frame kept.
bool runHandler(const Handlers& handlers, PacketReader& reader, quint8 id) {
    try {
        handlers.frame(reader, id);
    } catch (const PacketReadError& e) {
        if (handlers.malformed)
            handlers.malformed(id, e.what());
    } catch (const StopCutting&) {
        return false;
    }
    return true;
}

// Marks the buffer as being cut for the life of one cutting pass.
class CuttingGuard {
public:
    explicit CuttingGuard(StreamBuffer& in) : m_in(in) { m_in.cutting = true; }
    ~CuttingGuard() { m_in.cutting = false; }
    CuttingGuard(const CuttingGuard&) = delete;
    CuttingGuard& operator=(const CuttingGuard&) = delete;

private:
    StreamBuffer& m_in;
};

void protocolError(const Handlers& handlers, const QString& what) {
    if (handlers.protocolError)
        handlers.protocolError(what);
}

QString shortFrame(int length, int least) {
    return QStringLiteral("a frame of length ") + QString::number(length) +
           QStringLiteral(", below the least of ") + QString::number(least);
}

} // namespace

void CutBNCS(StreamBuffer& in, const Handlers& handlers) {
    if (in.cutting)
        return;
    CuttingGuard guard(in);
    PacketReader reader;
    while (in.size() > 5) {
        const int length = in.at(2) | (in.at(3) << 8);
        if (length < 4) {
            protocolError(handlers, shortFrame(length, 4));
            return;
        }
        if (in.size() < length)
            return;
        if (in.at(0) != 0xFF && in.afterStrayFrame) {
            protocolError(handlers, QStringLiteral("frames without their marker, one after "
                                                   "another: the frame boundaries are lost"));
            return;
        }
        reader.HandleBuffer(in.peek(length));
        const quint32 generation = in.generation();
        const quint8 marker = reader.ReadBYTE();
        const quint8 id = reader.ReadBYTE();
        reader.Skip(2);
        in.afterStrayFrame = marker != 0xFF;
        if (marker != 0xFF) {
            if (handlers.badMarker)
                handlers.badMarker(marker);
        } else if (!runHandler(handlers, reader, id)) {
            return;
        }
        if (in.generation() == generation)
            in.consume(length);
    }
}

void CutBNLS(StreamBuffer& in, const Handlers& handlers) {
    if (in.cutting)
        return;
    CuttingGuard guard(in);
    PacketReader reader;
    while (in.size() > 4) {
        const int length = in.at(0) | (in.at(1) << 8);
        if (length < 3) {
            protocolError(handlers, shortFrame(length, 3));
            return;
        }
        if (in.size() < length)
            return;
        reader.HandleBuffer(in.peek(length));
        const quint32 generation = in.generation();
        reader.Skip(2);
        const quint8 id = reader.ReadBYTE();
        if (!runHandler(handlers, reader, id))
            return;
        if (in.generation() == generation)
            in.consume(length);
    }
}

} // namespace streamcutter
