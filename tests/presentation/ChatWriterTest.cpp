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
    // A view exactly at the limit is full.
    view().clear();
    WriteChat(slot(), {{0xFFFFFF, QString(kChatViewLimit - 2, u'x')}});
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

// Each line alone in the view: what is left of it, the colour at some of its
// characters, and which characters are bold ('+').
TEST_F(ChatWriterTest, EscapesColourEverythingBehindThemAndOnlyDisappear) {
    CurrentTheme().diablo.Black = 0x333333;
    const quint32 green = 0x00FF00;
    struct Row {
        const char* name;
        ColorLine line;
        QString text;
        std::vector<std::pair<int, quint32>> colours;
        const char* bold = "";
    };
    const Row rows[] = {
        {"colour 0 is white and NULs are dropped",
         {{0, QString::fromLatin1("a\0b", 3)}, {0x0000FF, "red"}},
         "abred",
         {{0, 0xFFFFFF}, {2, 0x0000FF}}},
        {"an escape colours the rest of its pair and the next pairs",
         {{green, "ab" + d2('1') + "cd"}, {0xFFFF00, "ef"}},
         "abcdef",
         {{0, green}, {2, 0x0000FF}, {4, 0x0000FF}}},
        {"the theme's true black", {{0xFFFFFF, d2('6') + "k"}}, "k", {{0, 0x333333}}},
        {"lower-case codes are upper-cased; upper-case 'C' escapes run last",
         {{0xFFFFFF, sc('r') + "g" + d2('b') + "B" + d2('B', 'C') + "n"}},
         "gBn",
         {{0, green}, {2, green}},
         "-+-"},
        {"the system's grey text is shown as a real grey",
         {{0xFFFFFF, sc('Q') + "q"}},
         "q",
         {{0, DisplayColor(0x80000011)}}},
        {"unknown codes and an escape at the end",
         {{green, "a" + sc('a') + "b" + d2('?') + "c" + kStarCraft}},
         "abc",
         {{0, green}, {1, green}, {2, green}}},
        {"a Diablo escape cut short", {{green, "x" + QString(kDiablo) + "c"}}, "x", {}},
        {"a lone lead character is no escape", {{green, "\u00FFx"}}, "\u00FFx", {{0, green}}},
        {"an escape formed across pairs",
         {{0xFFFFFF, "a\u00FF"}, {0xFFFFFF, "c1b"}},
         "ab",
         {{1, 0x0000FF}}},
        {"an escape formed where removing a StarCraft one joins text",
         {{0xFFFFFF, "\u00FF" + sc('P') + "c2z"}},
         "z",
         {{0, 0xFF0000}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        view().clear();
        WriteChatView(view(), row.line);
        ASSERT_EQ(view().text(), row.text);
        const auto f = formats(view());
        for (const auto& [at, colour] : row.colours)
            EXPECT_EQ(f[size_t(at)].color, colour) << at;
        for (size_t i = 0; row.bold[i]; ++i)
            EXPECT_EQ(f[i].bold, row.bold[i] == '+') << i;
    }
    EXPECT_NE(DisplayColor(0x80000011), 0x80000011u);
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
