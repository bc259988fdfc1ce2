#include "session/PacketWriter.h"
#include "session/StreamCutter.h"

#include <gtest/gtest.h>

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

TEST(BncsCutter, TwoFramesInOneEventAreHandledInOrder) {
    BncsStream s;
    s.feed(bncs(0x25, "\x01\x02\x03\x04") + bncs(0x0F, "hello"));
    ASSERT_EQ(s.frames.size(), 2u);
    EXPECT_EQ(s.frames[0].id, 0x25);
    EXPECT_EQ(s.frames[0].payload, QByteArray("\x01\x02\x03\x04"));
    EXPECT_EQ(s.frames[1].id, 0x0F);
    EXPECT_TRUE(s.in.isEmpty());
}

TEST(BncsCutter, AFrameSplitOverThreeEventsIsHandledOnceInTheThird) {
    BncsStream s;
    const QByteArray frame = bncs(0x0F, QByteArray(20, 'a'));
    s.feed(frame.left(3));
    s.feed(frame.mid(3, 10));
    EXPECT_TRUE(s.frames.empty());
    s.feed(frame.mid(13));
    ASSERT_EQ(s.frames.size(), 1u);
    EXPECT_EQ(s.frames[0].payload, QByteArray(20, 'a'));
}

TEST(BncsCutter, AFrameOfFourOrFiveBytesWaitsAloneForMoreData) {
    BncsStream s;
    s.feed(bncs(0x00, {}));
    EXPECT_TRUE(s.frames.empty());
    EXPECT_EQ(s.in.size(), 4);
    s.feed(bncs(0x25, "abcd"));
    ASSERT_EQ(s.frames.size(), 2u);
    EXPECT_EQ(s.frames[0].id, 0x00);
    EXPECT_EQ(s.frames[1].id, 0x25);

    s.feed(bncs(0x0A, "x"));
    EXPECT_EQ(s.frames.size(), 2u);
}

TEST(BncsCutter, ABadMarkerCostsOneLineAndExactlyItsOwnLength) {
    BncsStream s;
    QByteArray bad = bncs(0x0F, "abcdef");
    bad[0] = char(0xFE);
    s.feed(bad + bncs(0x25, "wxyz"));
    ASSERT_EQ(s.badMarkers.size(), 1u);
    EXPECT_EQ(s.badMarkers[0], 0xFE);
    ASSERT_EQ(s.frames.size(), 1u);
    EXPECT_EQ(s.frames[0].id, 0x25);
}

TEST(BncsCutter, ALengthBelowFourOrLostBoundariesAreAProtocolError) {
    for (int length = 0; length < 4; ++length) {
        BncsStream s;
        QByteArray stuck("\xff\x0f", 2);
        stuck += char(length);
        stuck += '\0';
        s.feed(stuck + bncs(0x25, "abcd"));
        EXPECT_TRUE(s.frames.empty()) << length;
        EXPECT_TRUE(s.badMarkers.empty());
        ASSERT_EQ(s.protocolErrors.size(), 1u) << length;
        EXPECT_TRUE(s.protocolErrors[0].contains(QStringLiteral("length %1,").arg(length)));
    }
    // One stray frame is skipped; a second in a row means the boundaries are gone.
    BncsStream s;
    QByteArray stray = bncs(0x0F, "abcdef");
    stray[0] = char(0xFE);
    s.feed(stray + stray + bncs(0x25, "wxyz"));
    EXPECT_EQ(s.badMarkers.size(), 1u);
    ASSERT_EQ(s.protocolErrors.size(), 1u);
    EXPECT_TRUE(s.frames.empty());
}

TEST(BncsCutter, AHandlerThatReadsPastItsFrameDropsOnlyThatFrame) {
    BncsStream s;
    s.onFrame = [](PacketReader& r, quint8 id) {
        if (id == 0x0F)
            r.ReadDWORD(), r.ReadDWORD();
    };
    s.feed(bncs(0x0F, "abc") + bncs(0x25, "wxyz"));
    EXPECT_EQ(s.malformed, std::vector<quint8>{0x0F});
    ASSERT_EQ(s.frames.size(), 2u);
    EXPECT_EQ(s.frames[1].id, 0x25);
}

TEST(BncsCutter, DataArrivingDuringAHandlerIsCutAfterItNotTwice) {
    BncsStream s;
    bool nested = false;
    s.onFrame = [&](PacketReader&, quint8 id) {
        if (id == 0x53 && !nested) {
            nested = true;
            s.feed(bncs(0x54, "late"));
        }
    };
    s.feed(bncs(0x53, "first"));
    ASSERT_EQ(s.frames.size(), 2u);
    EXPECT_EQ(s.frames[0].id, 0x53);
    EXPECT_EQ(s.frames[1].id, 0x54);
}

TEST(BncsCutter, AHandlerThatEmptiesTheStreamLosesNothingThatCameAfter) {
    BncsStream s;
    s.onFrame = [&](PacketReader&, quint8 id) {
        if (id == 0x13) {
            s.in.clear();
            s.in.append(bncs(0x25, "next"));
        }
    };
    s.feed(bncs(0x13, "") + bncs(0x0F, "gone"));
    ASSERT_EQ(s.frames.size(), 2u);
    EXPECT_EQ(s.frames[1].id, 0x25);
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
