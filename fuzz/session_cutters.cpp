// Arbitrary bytes from a server, in arbitrary pieces, through both stream
// cutters, with handlers that walk each frame by reads its own bytes choose.
#include "session/StreamCutter.h"

#include <cstddef>
#include <cstdint>

namespace {

void walkFrame(PacketReader& r) {
    // The frame's own bytes pick the reads, so odd cursors and positions occur.
    for (int step = 0; step < 16; ++step) {
        const quint8 op = r.ReadBYTE(qint16(1 + step % std::max(1, r.DataLength())));
        const qint16 pos = qint16(op & 0x80 ? (op & 0x3F) : 0);
        switch (op % 7) {
        case 0:
            r.ReadBYTE(pos);
            break;
        case 1:
            r.ReadWORD(pos);
            break;
        case 2:
            r.ReadDWORD(pos);
            break;
        case 3:
            r.ReadSTRING(pos);
            break;
        case 4:
            r.ReadVOID(op, pos);
            break;
        case 5:
            r.Skip(int(op) - 64);
            break;
        case 6:
            (void)r.ReadRemains();
            break;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const bool bnls = data[0] & 1;
    StreamBuffer in;
    streamcutter::Handlers handlers{[](PacketReader& r, quint8) { walkFrame(r); }, [](quint8) {},
                                    [](quint8, const char*) {}, [](const QString&) {}};
    size_t pos = 1;
    while (pos < size) {
        // Each piece's length is taken from the stream itself.
        const size_t piece = std::min<size_t>(size - pos, 1 + data[pos] % 64);
        in.append(QByteArray(reinterpret_cast<const char*>(data + pos), qsizetype(piece)));
        if (bnls)
            streamcutter::CutBNLS(in, handlers);
        else
            streamcutter::CutBNCS(in, handlers);
        pos += piece;
    }
    return 0;
}
