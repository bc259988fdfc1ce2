// The lines a running bot hands to its terminal and followers: finished,
// across views in the order written, none lost when a full view is emptied,
// and printed in their colours with nothing that would steer the terminal.
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "control/AnsiText.h"
#include "control/ChatFeed.h"
#include "control/FeedMessages.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"

#include <QCoreApplication>

TEST_F(SlotFixture, ChatFeedHandsOnFinishedLinesInWritingOrderAndBeforeAViewIsEmptied) {
    SettingsWrapper::instance().setTimeStamp(false);
    SettingsWrapper::instance().setColorDisp(0);
    ChatFeed& feed = ChatFeed::instance();
    const int a = SlotTable::instance().LoadProfile(QStringLiteral("A"));
    std::vector<FeedLine> seen;
    const auto collect = QObject::connect(&feed, &ChatFeed::linesWritten,
                                          [&](const QList<FeedLine>& lines) {
                                              for (const FeedLine& l : lines)
                                                  seen.push_back(l);
                                          });

    WriteChat(0, Status::Information, QStringLiteral("console one"));
    WriteChat(a, Status::Information, QStringLiteral("slot one"));
    WriteChatView(rtbWhisper(a), {{0xFFFFFF, QStringLiteral("<From: b> hi\r\n")}});
    WriteChat(0, Status::Information, QStringLiteral("console two"));
    // The escape colours the rest of its line after the line end went in.
    WriteChat(a, {{0xFFFFFF, QStringLiteral("plain \u00C1Yred")}});
    // Enough to empty the console's view several times in one go.
    constexpr int kFill = 20000;
    for (int i = 0; i < kFill; ++i)
        WriteChat(0, Status::Information, QStringLiteral("fill %1").arg(i));
    QCoreApplication::processEvents();
    QObject::disconnect(collect);

    ASSERT_EQ(seen.size(), size_t(5 + kFill));
    const std::vector<std::tuple<int, bool, QString>> first{
        {0, false, QStringLiteral("console one")},
        {a, false, QStringLiteral("slot one")},
        {a, true, QStringLiteral("<From: b> hi")},
        {0, false, QStringLiteral("console two")},
        {a, false, QStringLiteral("plain red")}};
    for (size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(seen[i].slot, std::get<0>(first[i])) << i;
        EXPECT_EQ(seen[i].whisper, std::get<1>(first[i])) << i;
        EXPECT_EQ(seen[i].text(), std::get<2>(first[i])) << i;
    }
    ASSERT_EQ(seen[4].runs.size(), 2u);
    EXPECT_NE(seen[4].runs[1].format.color, seen[4].runs[0].format.color);
    for (int i = 0; i < kFill; ++i)
        ASSERT_EQ(seen[size_t(5 + i)].text(), QStringLiteral("fill %1").arg(i));

    // What a follower is shown first: the last lines the slot's views hold.
    const QList<FeedLine> recent = feed.recentLines(a, 2);
    ASSERT_EQ(recent.size(), 2);
    EXPECT_EQ(recent[0].text(), QStringLiteral("plain red"));
    EXPECT_EQ(recent[1].text(), QStringLiteral("<From: b> hi"));
}

// A line goes out as JSON and comes back with every character and format,
// whether its text is plain ASCII (written straight) or not (through UTF-8).
TEST(FeedMessages, ALineReadsBackAsItWasWritten) {
    CharFormat bold;
    bold.color = 0x00FF80;
    bold.bold = true;
    const QString texts[] = {QStringLiteral("plain"), QStringLiteral("say \"hi\" \\o/"),
                             QStringLiteral("tab\tbell\x07"), QStringLiteral("caf\u00E9 \u00FF\u20AC")};
    for (const QString& text : texts) {
        const FeedLine line{1, true, {{QStringLiteral("[12:00] "), CharFormat{}}, {text, bold}}};
        const QByteArray json = FeedMessages::Line(line, QStringLiteral("M\u00E4in"));
        const FeedMessages::Message back = FeedMessages::Read(json);
        ASSERT_EQ(back.kind, FeedMessages::Message::Line) << json.constData();
        EXPECT_EQ(back.profile, QStringLiteral("M\u00E4in"));
        EXPECT_TRUE(back.whisper);
        ASSERT_EQ(back.runs.size(), 2u);
        EXPECT_EQ(back.runs[1].text, text) << json.constData();
        EXPECT_EQ(back.runs[1].format.color, bold.color);
        EXPECT_TRUE(back.runs[1].format.bold);
    }
}

// Colours as the terminal takes them (red first, where the views keep blue
// first), the prefix plain, and control characters shown, not obeyed.
TEST(AnsiText, ALineKeepsItsColoursAndCannotSteerTheTerminal) {
    CharFormat red;
    red.color = 0x0000FF;
    red.bold = true;
    const std::vector<TextRun> runs{{QStringLiteral("hi\x1b[2J\x07\t\u009b"), red}};
    EXPECT_EQ(AnsiLine("[A] ", runs, true), "[A] \x1b[0;1;38;2;255;0;0mhi?[2J?\t?\x1b[0m\n");
    EXPECT_EQ(AnsiLine("[\x1b] ", runs, false), "[?] hi?[2J?\t?\n");
}
