#include "common/SlotFixture.h"
#include "session/PacketWriter.h"

class PacketWriterTest : public SlotFixture {};

// Nothing goes out on a closed socket; chat-only ids are dropped offline.
TEST_F(PacketWriterTest, ChatOnlyIdsAreDroppedOfflineAndLeaveNothingBehind) {
    PacketWriter w;
    const int closed = SlotTable::instance().LoadProfile(QStringLiteral("closed"));
    wsBNET(closed).setDetached(true);
    w.WriteDWORD(5);
    w.SendPacket(closed, 0x25);
    w.SendPacket(closed, 0x25, true);
    EXPECT_TRUE(wsBNET(closed).sent.isEmpty());
    EXPECT_TRUE(w.payload().isEmpty());

    const int i = loadConnected(QStringLiteral("alpha"));
    for (quint8 id : {0x0E, 0x26, 0x27, 0x10}) {
        w.WriteSTRING(QStringLiteral("hello"));
        w.SendPacket(i, id);
        EXPECT_TRUE(w.payload().isEmpty());
    }
    EXPECT_TRUE(wsBNET(i).sent.isEmpty());

    w.WriteDWORD(1);
    w.SendPacket(i, 0x25);
    ASSERT_EQ(wsBNET(i).sent.size(), 1);
    EXPECT_EQ(wsBNET(i).sent[0], QByteArray::fromHex("ff25080001000000"));

    Bots(i).setOnline(true);
    w.WriteSTRING(QStringLiteral("hi"));
    w.SendPacket(i, 0x0E);
    EXPECT_EQ(wsBNET(i).sent.last(), QByteArray::fromHex("ff0e07006869" "00"));
}

TEST(PacketFrames, OnlyTheLowSixteenBitsOfTheLengthAreWritten) {
    const QByteArray frame = PacketWriter::frameBNCS(0x0F, QByteArray(65536, 'x'));
    EXPECT_EQ(quint8(frame[2]), 4);
    EXPECT_EQ(quint8(frame[3]), 0);
}
