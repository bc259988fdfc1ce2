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

// A string ends at its NUL, past which the cursor moves; one without a NUL
// is empty and leaves the cursor where it was.
TEST(PacketReader, StringsAreWindows1252UpToTheirNul) {
    PacketReader r = readerOf(QByteArray("\0\x80\xe9\xff" "c\0cd", 8));
    EXPECT_EQ(r.ReadSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 2);
    EXPECT_EQ(r.ReadSTRING(), QString::fromUtf8("\u20ac\u00e9\u00ff" "c"));
    EXPECT_EQ(r.GetPosition(), 7);
    EXPECT_EQ(r.ReadSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 7);
    EXPECT_EQ(r.ReadSharedSTRING(), QString());
    EXPECT_EQ(r.GetPosition(), 7);
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

// A read cut short by the end still moves the cursor by its full width; a read past the
// end, at cursor zero or past the sixteen bits of the cursor is an error.
TEST(PacketReader, ShortReadsMoveTheCursorByTheirFullWidthAndReadsPastItAreErrors) {
    PacketReader r = readerOf(QByteArray(14, 'x'));
    r.Skip(4);
    EXPECT_EQ(r.ReadVOID(32).size(), 10);
    EXPECT_EQ(r.GetPosition(), 5 + 32);
    EXPECT_EQ(r.ReadBYTE(14), 'x');
    EXPECT_THROW(r.ReadBYTE(15), PacketReadError);

    PacketReader word = readerOf(QByteArray("\x01\x02\x03", 3));
    word.Skip(2);
    word.ReadDWORD();
    EXPECT_EQ(word.GetPosition(), 7);
    EXPECT_THROW(word.ReadDWORD(), PacketReadError);

    word.ClearBuffer();
    EXPECT_EQ(word.GetPosition(), 0);
    EXPECT_THROW(word.ReadBYTE(), PacketReadError);
    EXPECT_THROW(word.ReadSTRING(), PacketReadError);

    PacketReader wide = readerOf(QByteArray(40000, 'x'));
    wide.Skip(32766);
    EXPECT_EQ(wide.GetPosition(), 32767);
    EXPECT_EQ(wide.ReadBYTE(32767), 'x');
    EXPECT_THROW(wide.ReadBYTE(), PacketReadError);
}
