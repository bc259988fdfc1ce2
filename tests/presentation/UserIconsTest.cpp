#include "presentation/UserIcons.h"

#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"

namespace {

class UserIconsTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        slot = SlotTable::instance().LoadProfile(QStringLiteral("icons"));
        Bots(slot).Config.setClient(QStringLiteral("STAR"));
        settings().setIconDisp(2);
        settings().setIconDraw(false);
    }
    void TearDown() override {
        settings().setIconDisp(1);
        settings().setIconDraw(false);
    }
    static SettingsWrapper& settings() { return SettingsWrapper::instance(); }
    QString icon(const QString& statstring, qint32 flags = 0) {
        QString icon;
        QString ping;
        GetUserIcons(slot, statstring, flags, 20, icon, ping);
        return icon;
    }
    QString pingIcon(qint32 ping, qint32 flags = 0) {
        QString icon;
        QString result;
        GetUserIcons(slot, QStringLiteral("RATS"), flags, ping, icon, result);
        return result;
    }
    int slot = 0;
};

TEST_F(UserIconsTest, TheProductCodeChoosesTheIconAndFlagsOverrideIt) {
    EXPECT_EQ(icon(QStringLiteral("RATS")), QStringLiteral("STAR"));
    EXPECT_EQ(icon(QStringLiteral("PX3W")), QStringLiteral("W3XP"));
    EXPECT_EQ(icon(QStringLiteral("VD2D")), QStringLiteral("D2DV"));
    EXPECT_EQ(icon(QStringLiteral("TAHC")), QStringLiteral("Unknown"));
    EXPECT_EQ(icon(QString()), QStringLiteral("Unknown"));
    // Tested in the order operator, representative, squelched: the later wins.
    EXPECT_EQ(icon(QStringLiteral("RATS"), 0x02), QStringLiteral("Operator"));
    EXPECT_EQ(icon(QStringLiteral("RATS"), 0x03), QStringLiteral("Representative"));
    EXPECT_EQ(icon(QStringLiteral("RATS 0 1 3"), 0x23), QStringLiteral("Squelched"));
    // The ping's bar is the ping's band, the lag plug over all.
    EXPECT_EQ(pingIcon(201), QStringLiteral("Lime"));
    EXPECT_EQ(pingIcon(50, 0x10), QStringLiteral("UDP"));
}

TEST_F(UserIconsTest, IconDispDecidesWhoseStatisticsShow) {
    const QString ladder = QStringLiteral("RATS 1500 0 5");
    settings().setIconDisp(0);
    EXPECT_EQ(icon(ladder), QStringLiteral("STAR"));
    settings().setIconDisp(1);
    EXPECT_EQ(icon(ladder), QStringLiteral("SC5")) << "the profile's own product";
    EXPECT_EQ(icon(QStringLiteral("NB2W 1500 0 5")), QStringLiteral("W2BN"));
    settings().setIconDisp(2);
    EXPECT_EQ(icon(QStringLiteral("NB2W 1500 0 5")), QStringLiteral("W25"));
    EXPECT_EQ(icon(QStringLiteral("RATS")), QStringLiteral("STAR")) << "four characters only";
}

TEST_F(UserIconsTest, LadderIconsOfStarCraftAndWarCraftTwo) {
    EXPECT_EQ(icon(QStringLiteral("RATS 1500 0 12")), QStringLiteral("SC10"));
    EXPECT_EQ(icon(QStringLiteral("RATS 1500 1 12")), QStringLiteral("SCH1"));
    EXPECT_EQ(icon(QStringLiteral("PXES 1500 3 2")), QStringLiteral("SCH"));
    EXPECT_EQ(icon(QStringLiteral("RATS 500 3 2")), QStringLiteral("SCL")) << "rated below 1000";
    EXPECT_EQ(icon(QStringLiteral("RATS 1000 3 2")), QStringLiteral("SCH")) << "rated 1000";
    EXPECT_EQ(icon(QStringLiteral("RATS 0 0 -1")), QStringLiteral("STAR")) << "negative wins";
    EXPECT_EQ(icon(QStringLiteral("RTSJ 1500 1 2")), QStringLiteral("JSTR")) << "no ladder icons";
    EXPECT_EQ(icon(QStringLiteral("NB2W 1500 0 2 0 0 0 0 1")), QStringLiteral("W2L1"));
    EXPECT_EQ(icon(QStringLiteral("NB2W 1500 0 2 0 0 0 0 4")), QStringLiteral("W2L"));
    EXPECT_EQ(icon(QStringLiteral("NB2W 900 0 2")), QStringLiteral("W22")) << "no rated icon";
}

TEST_F(UserIconsTest, DiabloAndWarCraftThreeIcons) {
    EXPECT_EQ(icon(QStringLiteral("LTRD 12 1 2 0 0 0 0 0 0")), QStringLiteral("D1R2"));
    EXPECT_EQ(icon(QStringLiteral("RHSD 3 2 0 0 0 0 0 0 0")), QStringLiteral("D1S0"));
    EXPECT_EQ(icon(QStringLiteral("LTRD 12 5 2 0 0 0 0 0 0")), QStringLiteral("DRTL"));
    EXPECT_EQ(icon(QStringLiteral("LTRD 12 1 4 0 0 0 0 0 0")), QStringLiteral("DRTL"));
    EXPECT_EQ(icon(QStringLiteral("3RAW 3H3W 0")), QStringLiteral("W3H3"));
    EXPECT_EQ(icon(QStringLiteral("PX3W 2T3W 0 NALC")), QStringLiteral("WXT2"));
    EXPECT_EQ(icon(QStringLiteral("3RAW 1U3W 0")), QStringLiteral("W31"));
    EXPECT_EQ(icon(QStringLiteral("3RAW 9H3W 0")), QStringLiteral("WAR3")) << "no such tier";
}

TEST_F(UserIconsTest, NumbersAreDrawnOnIconsWhenIconDrawIsOn) {
    settings().setIconDraw(true);
    EXPECT_EQ(icon(QStringLiteral("RATS 1500 0 5")), QStringLiteral("SC5_1500"));
    const auto numbered = NumberedIconOf(QStringLiteral("SC5_1500"));
    ASSERT_TRUE(numbered.has_value());
    EXPECT_EQ(numbered->base, QStringLiteral("SC5"));
    EXPECT_EQ(numbered->text, QStringLiteral("1500"));
    EXPECT_EQ(numbered->color, 0xFFFFu);
    EXPECT_EQ(icon(QStringLiteral("RATS 0 0 5")), QStringLiteral("SC5")) << "no rating to show";
    EXPECT_EQ(icon(QStringLiteral("LTRD 12 0 1 0 0 0 0 0 0")), QStringLiteral("D1W1_12"));
    EXPECT_EQ(NumberedIconOf(QStringLiteral("D1W1_12"))->color, 0xFFFFFFu);
    EXPECT_EQ(icon(QStringLiteral("3RAW 4N3W 0")), QStringLiteral("W3N4_4"));

    // Each key and number is made once; a long number keeps its last six
    // characters; a key without a picture gets nothing.
    EXPECT_EQ(DrawIconNumber(QStringLiteral("SC5"), QStringLiteral(" 1500 "), 0xFF),
              QStringLiteral("SC5_1500"));
    EXPECT_EQ(NumberedIconOf(QStringLiteral("SC5_1500"))->color, 0xFFFFu);
    EXPECT_EQ(
        NumberedIconOf(DrawIconNumber(QStringLiteral("SCH"), QStringLiteral("12345678"), 0))->text,
        QStringLiteral("345678"));
    EXPECT_TRUE(DrawIconNumber(QStringLiteral("Nothing"), QStringLiteral("1"), 0).isEmpty());
    settings().setIconDraw(false);
    EXPECT_TRUE(DrawIconNumber(QStringLiteral("SCH"), QStringLiteral("77"), 0).isEmpty());
    EXPECT_EQ(FindIcon(QStringLiteral("SC5_1500")), QStringLiteral("SC5_1500"));
    EXPECT_TRUE(FindIcon(QStringLiteral("SC11")).isEmpty());
}

} // namespace
