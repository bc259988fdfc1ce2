#include "common/SlotFixture.h"
#include "statistics/NameFormat.h"
#include "statistics/UserNames.h"

#include <gtest/gtest.h>

TEST(NameFormat, HexPadsToTheWidthButNeverCuts) {
    EXPECT_EQ(FormatHex(3, 2), QStringLiteral("0x03"));
    EXPECT_EQ(FormatHex(0x100, 2), QStringLiteral("0x100"));
    EXPECT_EQ(FormatHex(0xabcdef, 8), QStringLiteral("0x00ABCDEF"));
}

TEST(UserNames, RealmNamesReduceToTheAccount) {
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("*bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("a*b*c"), false, -1), QStringLiteral("b*c"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), false, -1), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, -1), QStringLiteral("*bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), true, -1), QStringLiteral("*bob"));
}

class UserNamesForProfiles : public SlotFixture {};

TEST_F(UserNamesForProfiles, TheProfilesProductDecidesTheStarForm) {
    const int star = SlotTable::instance().LoadProfile(QStringLiteral("names-star"));
    const int diablo = SlotTable::instance().LoadProfile(QStringLiteral("names-diablo"));
    Bots(star).Config.setClient(QStringLiteral("STAR"));
    Bots(diablo).Config.setClient(QStringLiteral("d2xp"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, star), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("Hero*bob"), true, star), QStringLiteral("bob"));
    EXPECT_EQ(ConvertUsername(QStringLiteral("bob"), true, diablo), QStringLiteral("*bob"));
}
