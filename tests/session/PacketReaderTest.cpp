#include "session/PacketReader.h"

#include "platform/Cp1252.h"

#include <QList>

#include <gtest/gtest.h>

namespace {

PacketReader readerOf(const QByteArray& bytes) {
    PacketReader r;
    r.HandleBuffer(bytes);
    return r;
}

} // namespace

TEST(PacketReader, ReadsLittleEndianFieldsAndMovesTheCursorByTheirWidth) {
    PacketReader r = readerOf(QByteArray::fromHex("ff0a1000" "78563412" "3412" "07"));
    EXPECT_EQ(r.ReadBYTE(), 0xFF);
    EXPECT_EQ(r.ReadBYTE(), 0x0A);
    EXPECT_EQ(r.ReadWORD(), 0x0010);
    EXPECT_EQ(r.ReadDWORD(), 0x12345678u);
    EXPECT_EQ(r.ReadWORD(), 0x1234);
    EXPECT_EQ(r.GetPosition(), 11);
    EXPECT_EQ(r.ReadRemains(), QByteArray("\x07", 1));
    EXPECT_EQ(r.DataLength(), 11);
}

TEST(PacketReader, AbsolutePositionsReadThereAndLeaveTheCursor) {
    PacketReader r = readerOf(QByteArray("\x01\x02\x03\x04" "abc\0def\0", 12));
    EXPECT_EQ(r.ReadBYTE(5), 'a');
    EXPECT_EQ(r.GetPosition(), 1);
    EXPECT_EQ(r.ReadBYTE(0), 0x01);
    EXPECT_EQ(r.GetPosition(), 2);
    EXPECT_EQ(r.ReadSTRING(9), QStringLiteral("def"));
    EXPECT_EQ(r.GetPosition(), 2);
    EXPECT_EQ(r.ReadDWORD(1), 0x04030201u);
    EXPECT_EQ(r.GetPosition(), 2);
}

TEST(PacketReader, StringWithoutTerminatorIsEmptyAndKeepsTheCursor) {
    PacketReader r = readerOf(QByteArray("ab\0cd", 5));
    EXPECT_EQ(r.ReadSTRING(), QStringLiteral("ab"));
    EXPECT_EQ(r.GetPosition(), 4);
    EXPECT_EQ(r.ReadSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 4);
    EXPECT_EQ(r.ReadSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 4);
}

TEST(PacketReader, StringAtANulIsEmptyAndMovesOneByte) {
    PacketReader r = readerOf(QByteArray("\0x\0", 3));
    EXPECT_EQ(r.ReadSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 2);
    EXPECT_EQ(r.ReadSTRING(), QStringLiteral("x"));
}

TEST(PacketReader, StringsAreWindows1252) {
    PacketReader r = readerOf(QByteArray("\x80\xe9\xff" "c\0", 5));
    EXPECT_EQ(r.ReadSTRING(), QString::fromUtf8("\u20ac\u00e9\u00ff" "c"));
}

// Texts read again share what was decoded before; each must still be the
// decoding of its own bytes, whatever was read in between.
TEST(PacketReader, RepeatedStringsShareTheirTextAndEachStaysItsOwn) {
    QList<QByteArray> names;
    for (int i = 0; i < 20000; ++i)
        names << QByteArray("user") + QByteArray::number(i) + (i % 3 ? "" : "\x80\x9f");
    for (int round = 0; round < 2; ++round) {
        for (int i = round; i < names.size(); i += 7) {
            PacketReader r = readerOf(names[i] + '\0');
            ASSERT_EQ(r.ReadSharedSTRING(), cp1252::decode(names[i])) << names[i].constData();
        }
    }
    PacketReader first = readerOf(QByteArray("RATS 0 0 0 0 0 0 0 0 RATS\0", 27));
    PacketReader second = readerOf(QByteArray("RATS 0 0 0 0 0 0 0 0 RATS\0", 27));
    EXPECT_TRUE(first.ReadSharedSTRING().isSharedWith(second.ReadSharedSTRING()));
}

TEST(PacketReader, VoidReturnsWhatIsLeftButMovesTheFullLength) {
    PacketReader r = readerOf(QByteArray(14, 'x'));
    r.Skip(4);
    EXPECT_EQ(r.ReadVOID(32).size(), 10);
    EXPECT_EQ(r.GetPosition(), 5 + 32);
}

TEST(PacketReader, ReadsPastTheEndOrAtCursorZeroAreErrors) {
    PacketReader r = readerOf(QByteArray("\x01\x02", 2));
    r.Skip(2);
    EXPECT_THROW(r.ReadBYTE(), PacketReadError);
    EXPECT_THROW(r.ReadDWORD(), PacketReadError);

    r.ClearBuffer();
    EXPECT_EQ(r.GetPosition(), 0);
    EXPECT_THROW(r.ReadBYTE(), PacketReadError);
    EXPECT_THROW(r.ReadSTRING(), PacketReadError);
}

TEST(PacketReader, AWordCutShortStillMovesTheCursorByItsWidth) {
    PacketReader r = readerOf(QByteArray("\x01\x02\x03", 3));
    r.Skip(2);
    r.ReadDWORD();
    EXPECT_EQ(r.GetPosition(), 7);
}

TEST(PacketReader, TheCursorIsSixteenBitsWide) {
    PacketReader r = readerOf(QByteArray(40000, 'x'));
    r.Skip(32766);
    EXPECT_EQ(r.GetPosition(), 32767);
    EXPECT_EQ(r.ReadBYTE(32767), 'x');
    EXPECT_THROW(r.ReadBYTE(), PacketReadError);
}
