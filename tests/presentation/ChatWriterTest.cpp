#include "presentation/ChatWriter.h"

#include "common/ChatFixture.h"
#include "session/MachineFacts.h"


namespace {

const QChar kStarCraft(0xC1);
const QChar kDiablo(0xFF);

QString sc(char code) {
    return QString(kStarCraft) + QLatin1Char(code);
}

QString d2(char code, char c = 'c') {
    return QString(kDiablo) + QLatin1Char(c) + QLatin1Char(code);
}

} // namespace

class ChatWriterTest : public ChatFixture {
protected:
    int slot() {
        if (m_slot == 0) m_slot = SlotTable::instance().LoadProfile(QStringLiteral("writer"));
        return m_slot;
    }
    ChatDocument& view() { return rtbChat(slot()); }

    int m_slot = 0;
};

TEST_F(ChatWriterTest, AFullViewIsEmptiedWholeBeforeTheNextLine) {
    const QString filler(kChatViewLimit - 1 - 2, u'x'); // 65534 with its line end
    WriteChat(slot(), {{0xFFFFFF, filler}});
    ASSERT_EQ(view().length(), kChatViewLimit - 1);
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("ten chars.")}});
    EXPECT_EQ(view().length(), kChatViewLimit - 1 + 12);
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("alone")}});
    EXPECT_EQ(view().text(), QStringLiteral("alone\r\n"));

    // Templates and other views clear through the timestamp step alike.
    WriteChatView(view(), {{0xFFFFFF, QString(kChatViewLimit, u'y')}});
    WriteTimestamp(view());
    EXPECT_TRUE(view().isEmpty());
}

TEST_F(ChatWriterTest, ALockedViewTakesNothingAndSaysNothing) {
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("before")}});
    SettingsWrapper::instance().setLocked(true);
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("lost")}});
    WriteChat(0, Status::Error, QStringLiteral("lost too"));
    WriteChatView(view(), {{0xFFFFFF, QStringLiteral("lost")}});
    WriteTimestamp(view());
    ReportError(QStringLiteral("LoadProfile"), QStringLiteral("boom"), QStringLiteral("Unknown"));
    EXPECT_EQ(view().text(), QStringLiteral("before\r\n"));
    EXPECT_TRUE(rtbChat(0).isEmpty());
}

TEST_F(ChatWriterTest, ColourZeroIsWhiteAndNulsAreDropped) {
    WriteChat(slot(), {{0, QString::fromLatin1("a\0b", 3)}, {0x0000FF, QStringLiteral("red")}});
    EXPECT_EQ(view().text(), QStringLiteral("abred\r\n"));
    const auto f = formats(view());
    EXPECT_EQ(f[0].color, 0xFFFFFFu);
    EXPECT_EQ(f[2].color, 0x0000FFu);
    EXPECT_EQ(f.back().color, 0x0000FFu); // the line end goes with the last pair
}

TEST_F(ChatWriterTest, AnEscapeColoursEverythingBehindItToTheEndOfTheView) {
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("earlier")}});
    WriteChat(slot(), {{0x00FF00, QStringLiteral("ab") + d2('1') + QStringLiteral("cd")},
                       {0xFFFF00, QStringLiteral("ef")}});
    EXPECT_EQ(view().text(), QStringLiteral("earlier\r\nabcdef\r\n"));
    const auto f = formats(view());
    EXPECT_EQ(f[0].color, 0xFFFFFFu);
    EXPECT_EQ(f[9].color, 0x00FF00u);  // "a": before the escape
    EXPECT_EQ(f[11].color, 0x0000FFu); // "c": Diablo red
    EXPECT_EQ(f[13].color, 0x0000FFu); // "e": the next pair too
    EXPECT_EQ(f.back().color, 0x0000FFu);
}

TEST_F(ChatWriterTest, EscapeTablesAndStyles) {
    CurrentTheme().diablo.Black = 0x333333;
    WriteChatView(view(), {{0xFFFFFF, d2('6') + QStringLiteral("k")}});
    EXPECT_EQ(formats(view()).back().color, 0x333333u) << "the theme's true black";

    view().clear();
    // Lower-case codes are upper-cased; upper-case 'C' escapes run last.
    WriteChatView(view(),
                  {{0xFFFFFF, sc('r') + QStringLiteral("g") + d2('b') + QStringLiteral("B") +
                                  d2('B', 'C') + QStringLiteral("n")}});
    ASSERT_EQ(view().text(), QStringLiteral("gBn"));
    const auto f = formats(view());
    EXPECT_EQ(f[0].color, 0x00FF00u);
    EXPECT_FALSE(f[0].bold);
    EXPECT_TRUE(f[1].bold);
    EXPECT_FALSE(f[2].bold) << "a second flip turns bold off again";
    EXPECT_EQ(f[2].color, 0x00FF00u);

    view().clear();
    // The system's grey text is shown as a real grey.
    WriteChatView(view(), {{0xFFFFFF, sc('Q') + QStringLiteral("q")}});
    EXPECT_EQ(formats(view())[0].color, DisplayColor(0x80000011));
    EXPECT_NE(DisplayColor(0x80000011), 0x80000011u);
}

TEST_F(ChatWriterTest, UnknownCodesAndEscapesAtTheEndOnlyDisappear) {
    WriteChatView(view(), {{0x00FF00, QStringLiteral("a") + sc('a') + QStringLiteral("b") +
                                          d2('?') + QStringLiteral("c") + kStarCraft}});
    EXPECT_EQ(view().text(), QStringLiteral("abc"));
    for (const CharFormat& f : formats(view()))
        EXPECT_EQ(f.color, 0x00FF00u);

    view().clear();
    WriteChatView(view(), {{0x00FF00, QStringLiteral("x") + kDiablo + QStringLiteral("c")}});
    EXPECT_EQ(view().text(), QStringLiteral("x"));
    view().clear();
    // A lone lead character is no escape at all.
    WriteChatView(view(), {{0x00FF00, QStringLiteral("\u00FFx")}});
    EXPECT_EQ(view().text(), QStringLiteral("\u00FFx"));
}

TEST_F(ChatWriterTest, ColorDispChoosesParseRemoveOrIgnore) {
    SettingsWrapper::instance().setColorDisp(1);
    WriteChat(slot(), {{0x00FF00, d2('1') + QStringLiteral("Red")}});
    EXPECT_EQ(view().text(), QStringLiteral("Red\r\n"));
    EXPECT_EQ(formats(view())[0].color, 0x00FF00u);

    view().clear();
    SettingsWrapper::instance().setColorDisp(2);
    WriteChat(slot(), {{0x00FF00, d2('1') + QStringLiteral("Red")}});
    EXPECT_EQ(view().text(), d2('1') + QStringLiteral("Red\r\n"));

    // Escapes left in the view are the whole view's: the next parsed line
    // applies them from where they stand.
    SettingsWrapper::instance().setColorDisp(0);
    WriteChat(slot(), {{0xFFFFFF, sc('R') + QStringLiteral("g")}});
    EXPECT_EQ(view().text(), QStringLiteral("Red\r\ng\r\n"));
    const auto f = formats(view());
    EXPECT_EQ(f[0].color, 0x0000FFu);
    EXPECT_EQ(f[5].color, 0x0000FFu) << "the older escape's pass runs after the StarCraft one";
}

TEST_F(ChatWriterTest, EscapesFormAcrossPairsAndWhereARemovalJoinsText) {
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("a\u00FF")}, {0xFFFFFF, QStringLiteral("c1b")}});
    EXPECT_EQ(view().text(), QStringLiteral("ab\r\n"));
    EXPECT_EQ(formats(view())[1].color, 0x0000FFu);

    view().clear();
    // Removing the StarCraft escape brings "\u00FF" and "c2" together.
    WriteChatView(view(), {{0xFFFFFF, QStringLiteral("\u00FF") + sc('P') + QStringLiteral("c2z")}});
    EXPECT_EQ(view().text(), QStringLiteral("z"));
    EXPECT_EQ(formats(view())[0].color, 0xFF0000u);
}

TEST_F(ChatWriterTest, TimestampsStandInSlotsAndNeverOnTheConsole) {
    SettingsWrapper::instance().setTimeStamp(true);
    CurrentTheme().time = QStringLiteral("#0<%hh|%nn|%ss>%sp");
    CurrentTheme().status.Time = 0xABCDEF;
    WriteChat(0, {{0xFFFFFF, QStringLiteral("console")}});
    WriteChat(slot(), {{0xFFFFFF, QStringLiteral("slot")}});
    EXPECT_EQ(rtbChat(0).text(), QStringLiteral("console\r\n"));
    const QString text = view().text();
    ASSERT_TRUE(text.startsWith(u'<')) << text.toStdString();
    EXPECT_EQ(text.size(), QStringLiteral("<hh|nn|ss> slot\r\n").size());
    EXPECT_EQ(formats(view())[0].color, 0xABCDEFu);
    EXPECT_FALSE(FormatTimestamp().startsWith(u'#'));

    // A template's own view gets its timestamp by the view's slot.
    WriteTimestamp(rtbChat(0));
    EXPECT_EQ(rtbChat(0).text(), QStringLiteral("console\r\n"));
    WriteTimestamp(rtbWhisper(slot()));
    EXPECT_FALSE(rtbWhisper(slot()).isEmpty());
}

TEST_F(ChatWriterTest, ReportErrorWritesOneRedLineInTheSlotOnScreen) {
    ReadMachineFacts();
    SlotTable::instance().SelectBot(slot());
    ReportError(QStringLiteral("ParseOutput"), QStringLiteral("bad"), QStringLiteral("hi"));
    const MachineFacts& m = Machine();
    const QString version =
        QStringLiteral("%1.%2.%3").arg(m.VersionMajor).arg(m.VersionMinor).arg(m.VersionRevision);
    EXPECT_EQ(view().text(),
              version + QStringLiteral(" | ParseOutput : Error - bad - ( Vars: hi )\r\n"));
    EXPECT_EQ(formats(view())[0].color, 0x0000FFu);
}
