#include "gui/ChatView.h"

#include "platform/ChatDocument.h"

#include <QApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace {

constexpr quint32 kRed = 0x0000FF;
constexpr quint32 kBlue = 0xFF0000;

CharFormat colour(quint32 c) {
    CharFormat f;
    f.color = c;
    return f;
}

class ChatViewTest : public ::testing::Test {
protected:
    ChatDocument document;
    ChatView view{document};

    QTextDocument& shown() { return *view.QPlainTextEdit::document(); }
    // The format of the shown character at a position of the widget's text.
    QTextCharFormat formatAt(int position) {
        const QTextBlock block = shown().findBlock(position);
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment f = it.fragment();
            if (position >= f.position() && position < f.position() + f.length())
                return f.charFormat();
        }
        return {};
    }
    void appendLine(const QString& text, quint32 c = 0xFFFFFF) {
        document.append(text, colour(c));
        document.append(u"\r\n", colour(c));
    }
};

TEST_F(ChatViewTest, ShowsTheRunsWithTheirColoursAndStyles) {
    document.append(u"red ", colour(kRed));
    CharFormat styled = colour(kBlue);
    styled.bold = styled.italic = styled.underline = styled.strike = true;
    document.append(u"blue\r\n", styled);
    document.append(u"next", colour(0x00FF00));
    view.flush();
    EXPECT_EQ(view.toPlainText(), QStringLiteral("red blue\nnext"));
    EXPECT_EQ(formatAt(0).foreground().color(), QColor(255, 0, 0));
    const QTextCharFormat blue = formatAt(4);
    EXPECT_EQ(blue.foreground().color(), QColor(0, 0, 255));
    EXPECT_EQ(blue.fontWeight(), QFont::Bold);
    EXPECT_TRUE(blue.fontItalic());
    EXPECT_TRUE(blue.fontUnderline());
    EXPECT_TRUE(blue.fontStrikeOut());
    EXPECT_EQ(formatAt(9).foreground().color(), QColor(0, 255, 0));
    EXPECT_EQ(view.shownLength(), document.length());
}

TEST_F(ChatViewTest, AppendedLinesLeaveTheLinesBeforeThemAloneUntilCleared) {
    appendLine(QStringLiteral("one"));
    view.flush();
    // A mark on the first line survives only if that line is not redrawn.
    shown().firstBlock().setUserState(42);
    for (int i = 0; i < 50; ++i)
        appendLine(QStringLiteral("line %1").arg(i));
    view.flush();
    EXPECT_EQ(shown().firstBlock().userState(), 42);
    EXPECT_EQ(shown().blockCount(), 52);
    document.clear();
    appendLine(QStringLiteral("fresh"));
    view.flush();
    EXPECT_EQ(view.toPlainText(), QStringLiteral("fresh\n"));
}

TEST_F(ChatViewTest, AChangeInsideTheTextRedrawsFromItsLine) {
    appendLine(QStringLiteral("kept line"));
    appendLine(QStringLiteral("escape \u00FFc1here and on"));
    appendLine(QStringLiteral("last"));
    view.flush();
    shown().firstBlock().setUserState(7);
    // What the writer does with an escape: restyle to the end, remove it.
    const int escape = document.text().indexOf(u'\u00FF');
    document.restyle(escape, document.length(), [](CharFormat& f) { f.color = kRed; });
    document.remove(escape, 3);
    view.flush();
    EXPECT_EQ(view.toPlainText(), QStringLiteral("kept line\nescape here and on\nlast\n"));
    EXPECT_EQ(shown().firstBlock().userState(), 7);
    EXPECT_EQ(formatAt(10).foreground().color(), QColor(255, 255, 255));
    EXPECT_EQ(formatAt(17).foreground().color(), QColor(255, 0, 0));
    EXPECT_EQ(formatAt(view.toPlainText().indexOf(QStringLiteral("last"))).foreground().color(),
              QColor(255, 0, 0));
}

TEST_F(ChatViewTest, LineEndsSplitAcrossRunsMakeOneLineBreak) {
    document.append(u"a\r", colour(kRed));
    view.flush();
    document.append(u"\nb\rc\nd", colour(kBlue));
    view.flush();
    EXPECT_EQ(view.toPlainText(), QStringLiteral("a\nb\nc\nd"));
    // Redrawn from a line that began behind a lone carriage return.
    document.restyle(document.length() - 1, document.length(),
                     [](CharFormat& f) { f.bold = true; });
    view.flush();
    EXPECT_EQ(view.toPlainText(), QStringLiteral("a\nb\nc\nd"));
}

TEST_F(ChatViewTest, AHiddenViewDrawsWhenShownAndThenInSlices) {
    const QString line = QString(99, u'x');
    const int lines = 3 * ChatView::kSliceLength / 100;
    for (int i = 0; i < lines; ++i)
        appendLine(line);
    QApplication::processEvents();
    EXPECT_EQ(view.shownLength(), 0) << "nothing is drawn while hidden";
    view.show();
    QApplication::processEvents();
    EXPECT_GT(view.shownLength(), 0);
    EXPECT_LT(view.shownLength(), document.length()) << "one slice per turn of the loop";
    for (int turn = 0; turn < 10 && view.shownLength() < document.length(); ++turn)
        QApplication::processEvents();
    EXPECT_EQ(view.shownLength(), document.length());
    EXPECT_EQ(shown().blockCount(), lines + 1);
}

} // namespace
