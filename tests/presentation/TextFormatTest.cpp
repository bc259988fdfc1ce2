#include "presentation/TextFormat.h"

#include <QLocale>
#include <gtest/gtest.h>

TEST(TextFormat, UptimeAndSecondsDivideDownInWholeUnits) {
    const qint64 span = 86400 + 3600 + 60 + 1;
    EXPECT_EQ(FormatUptime(span * 1000), QStringLiteral("01|01:01:01"));
    EXPECT_EQ(FormatUptime(0), QStringLiteral("00|00:00:00"));
    EXPECT_EQ(FormatUptime(qint64(123) * 86400000 + 999), QStringLiteral("123|00:00:00"));
    qint64 seconds = span;
    EXPECT_EQ(FormatSeconds(seconds), QStringLiteral("1 days, 1 hours, 1 minutes."));
    EXPECT_EQ(seconds, 1);
    qint64 zero = 0;
    EXPECT_EQ(FormatSeconds(zero), QStringLiteral("Unavailable"));
}

TEST(TextFormat, FileTimeHalvesFillSixtyFourBitsBitForBit) {
    EXPECT_EQ(ParseFileTime(QStringLiteral("30000000 4294967295")),
              (qint64(30000000) << 32) | 0xFFFFFFFFll);
    EXPECT_EQ(ParseFileTime(QStringLiteral("4294967295 0")), qint64(0xFFFFFFFF00000000ull));
    EXPECT_EQ(ParseFileTime(QStringLiteral("7")), qint64(7) << 32);
}

TEST(TextFormat, SystemTimeCountsTheHourDownOnlyFromThirteen) {
    const QDate day(2024, 3, 5);
    const QString noon = FormatSystemTime(QDateTime(day, QTime(12, 0, 0)));
    const QString midnight = FormatSystemTime(QDateTime(day, QTime(0, 5, 9)));
    const QString evening = FormatSystemTime(QDateTime(day, QTime(13, 30, 0)));
    const QLocale locale = QLocale::system();
    EXPECT_EQ(noon, locale.dayName(2) + QStringLiteral(", ") + locale.monthName(3) +
                        QStringLiteral(" 5, 2024 12:00:00 AM"))
        << "a Tuesday";
    EXPECT_TRUE(midnight.endsWith(QStringLiteral(" 0:05:09 AM"))) << midnight.toStdString();
    EXPECT_TRUE(evening.endsWith(QStringLiteral(" 1:30:00 PM"))) << evening.toStdString();
}

TEST(TextFormat, DecodeUtf8DecodesValidTextAndLeavesTheRest) {
    // "é" sent as UTF-8 arrives as the two characters of its bytes.
    EXPECT_EQ(DecodeUTF8(QString::fromLatin1("caf\xc3\xa9")), QString::fromUtf8("caf\u00e9"));
    EXPECT_EQ(DecodeUTF8(QString::fromLatin1("caf\xe9")), QString::fromLatin1("caf\xe9"));
    EXPECT_EQ(DecodeUTF8(QString()), QString());
    EXPECT_EQ(DecodeUTF8(QStringLiteral("plain")), QStringLiteral("plain"));
}

TEST(TextFormat, HexDumpPadsTheShortLastLine) {
    const QByteArray bytes("ABCDEFGHIJKLMNOP\x01\xff", 18);
    const QStringList lines = HexDump(bytes).split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], QStringLiteral("41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   "
                                       "ABCDEFGHIJKLMNOP"));
    EXPECT_EQ(lines[1].size(), 48 + 2 + 16);
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("01 FF    ")));
    EXPECT_EQ(lines[1].right(16), QString::fromUtf8(".\u00ff..............").right(16));
    EXPECT_EQ(HexDump({}), QString());
}

TEST(TextFormat, SafeFileNameReplacesTheNineCharacters) {
    EXPECT_EQ(SafeFileName(QStringLiteral("Clan: a/b")), QStringLiteral("Clan_ a_b"));
    EXPECT_EQ(SafeFileName(QStringLiteral("\\?\"*<>|")), QStringLiteral("_______"));
}
