#include "session/PacketWriter.h"
#include "session/StreamCutter.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <functional>
#include <vector>

namespace {

struct Seen {
    quint8 id;
    QByteArray payload;
};

// Feeds pieces to a buffer as data events would and records what is cut.
class BncsStream {
public:
    void feed(const QByteArray& bytes) {
        in.append(bytes);
        streamcutter::CutBNCS(in, handlers());
    }
    streamcutter::Handlers handlers() {
        return {[this](PacketReader& r, quint8 id) {
                    frames.push_back({id, r.ReadRemains()});
                    if (onFrame)
                        onFrame(r, id);
                },
                [this](quint8 marker) { badMarkers.push_back(marker); },
                [this](quint8 id, const char*) { malformed.push_back(id); },
                [this](const QString& what) { protocolErrors.push_back(what); }};
    }
    StreamBuffer in;
    std::vector<Seen> frames;
    std::vector<quint8> badMarkers;
    std::vector<quint8> malformed;
    std::vector<QString> protocolErrors;
    std::function<void(PacketReader&, quint8)> onFrame;
};

QByteArray bncs(quint8 id, const QByteArray& payload) {
    return PacketWriter::frameBNCS(id, payload);
}

} // namespace

// Streams cut into frames: what each read yields, stray markers skipped, lengths that can't be.
TEST(BncsCutter, ReadsYieldWholeFramesInOrderAndBrokenStreamsStop) {
    QByteArray stray = bncs(0x0F, "abcdef");
    stray[0] = char(0xFE);
    const auto stuck = [](char length) {
        return QByteArray("\xff\x0f", 2) + length + '\0' + bncs(0x25, "abcd");
    };
    const QByteArray split = bncs(0x0F, QByteArray(20, 'a'));
    struct Row {
        const char* name;
        std::vector<QByteArray> reads;
        std::vector<QStringList> framesAfter; // "id payload" of every frame cut so far
        std::vector<quint8> badMarkers;
        const char* protocolError;             // a part of its text; none when null
        int left = -1;                         // bytes still waiting, when it matters
    };
    const QStringList none;
    const Row rows[] = {
        {"two frames in one read", {bncs(0x25, "wxyz") + bncs(0x0F, "hello")},
         {{"25 wxyz", "f hello"}}, {}, nullptr, 0},
        {"a frame over three reads", {split.left(3), split.mid(3, 10), split.mid(13)},
         {none, none, {"f " + QString(20, 'a')}}, {}, nullptr, 0},
        {"a frame of four or five bytes waits alone for more",
         {bncs(0x00, {}), bncs(0x25, "abcd"), bncs(0x0A, "x")},
         {none, {"0 ", "25 abcd"}, {"0 ", "25 abcd"}}, {}, nullptr, 5},
        {"a bad marker costs exactly its own frame", {stray + bncs(0x25, "wxyz")},
         {{"25 wxyz"}}, {0xFE}, nullptr},
        {"length 0", {stuck(0)}, {none}, {}, "length 0,"},
        {"length 1", {stuck(1)}, {none}, {}, "length 1,"},
        {"length 2", {stuck(2)}, {none}, {}, "length 2,"},
        {"length 3", {stuck(3)}, {none}, {}, "length 3,"},
        {"a second stray frame in a row: the boundaries are gone",
         {stray + stray + bncs(0x25, "wxyz")}, {none}, {0xFE}, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        BncsStream s;
        for (std::size_t n = 0; n < row.reads.size(); ++n) {
            s.feed(row.reads[n]);
            QStringList seen;
            for (const Seen& f : s.frames)
                seen << QString::number(f.id, 16) + u' ' + QString::fromLatin1(f.payload);
            EXPECT_EQ(seen, row.framesAfter[n]) << "after read " << n + 1;
        }
        EXPECT_EQ(s.badMarkers, row.badMarkers);
        ASSERT_EQ(s.protocolErrors.size(), row.protocolError ? 1u : 0u);
        if (row.protocolError) {
            EXPECT_TRUE(s.protocolErrors[0].contains(QLatin1String(row.protocolError)));
        }
        if (row.left >= 0) {
            EXPECT_EQ(s.in.size(), row.left);
        }
    }
}

// What a handler does to the stream it is called from: it reads past its frame, more data
// arrives meanwhile, or it empties the buffer and puts in what comes next.
TEST(BncsCutter, AHandlerCostsAtMostItsOwnFrame) {
    struct Row {
        const char* name;
        QByteArray read;
        std::function<void(BncsStream&, PacketReader&, quint8)> handler;
        std::vector<quint8> ids;
        std::vector<quint8> malformed;
    };
    const Row rows[] = {
        {"a read past the frame",
         bncs(0x0F, "abc") + bncs(0x25, "wxyz"),
         [](BncsStream&, PacketReader& r, quint8 id) {
             if (id == 0x0F) r.ReadDWORD(), r.ReadDWORD();
         },
         {0x0F, 0x25},
         {0x0F}},
        {"data arriving during a handler is cut after it, not twice",
         bncs(0x53, "first"),
         [](BncsStream& s, PacketReader&, quint8 id) {
             if (id == 0x53) s.feed(bncs(0x54, "late"));
         },
         {0x53, 0x54},
         {}},
        {"a handler that empties the stream",
         bncs(0x13, "") + bncs(0x0F, "gone"),
         [](BncsStream& s, PacketReader&, quint8 id) {
             if (id == 0x13) s.in.clear(), s.in.append(bncs(0x25, "next"));
         },
         {0x13, 0x25},
         {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        BncsStream s;
        s.onFrame = [&](PacketReader& r, quint8 id) { row.handler(s, r, id); };
        s.feed(row.read);
        std::vector<quint8> ids;
        for (const Seen& f : s.frames)
            ids.push_back(f.id);
        EXPECT_EQ(ids, row.ids);
        EXPECT_EQ(s.malformed, row.malformed);
    }
}

TEST(BnlsCutter, CutsFramesWithTheLengthInFrontAndTheIdBehind) {
    StreamBuffer in;
    std::vector<Seen> frames;
    streamcutter::Handlers h{[&](PacketReader& r, quint8 id) { frames.push_back({id, r.ReadRemains()}); },
                             {}, {}, {}};
    const QByteArray a = PacketWriter::frameBNLS(0x1A, "\x01\x02");
    const QByteArray b = PacketWriter::frameBNLS(0x09, "\x03\x04\x05");
    in.append(a + b.left(4));
    streamcutter::CutBNLS(in, h);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].id, 0x1A);
    EXPECT_EQ(frames[0].payload, QByteArray("\x01\x02"));
    in.append(b.mid(4));
    streamcutter::CutBNLS(in, h);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[1].payload, QByteArray("\x03\x04\x05"));

    // A four-byte frame waits; a length below three is a protocol error.
    in.append(PacketWriter::frameBNLS(0x0E, "x"));
    streamcutter::CutBNLS(in, h);
    EXPECT_EQ(frames.size(), 2u);
    int errors = 0;
    h.protocolError = [&](const QString&) { ++errors; };
    in.append(QByteArray("\x02\x00\x10", 3));
    streamcutter::CutBNLS(in, h);
    EXPECT_EQ(frames.size(), 3u);
    in.append(PacketWriter::frameBNLS(0x0E, "more"));
    streamcutter::CutBNLS(in, h);
    EXPECT_EQ(frames.size(), 3u);
    EXPECT_EQ(errors, 1);
}

TEST(StreamBuffer, ManyFramesThroughOneBufferKeepItSmall) {
    BncsStream s;
    for (int i = 0; i < 10000; ++i)
        s.feed(bncs(0x25, "abcd"));
    EXPECT_EQ(s.frames.size(), 10000u);
    EXPECT_TRUE(s.in.isEmpty());
}
