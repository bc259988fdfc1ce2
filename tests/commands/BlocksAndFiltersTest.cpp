#include "common/ChatFixture.h"
#include "config/TextListFile.h"

class BlocksAndFiltersTest : public ChatFixture {};

TEST_F(BlocksAndFiltersTest, PatternsMatchTheWholeTextWithOnlyStarsWild) {
    EXPECT_TRUE(MatchesPattern("SpamBot", "spam*"));
    EXPECT_TRUE(MatchesPattern("spam", "spam*"));
    EXPECT_FALSE(MatchesPattern("myspam", "spam*"));
    EXPECT_TRUE(MatchesPattern("oh hello there", "*hello*"));
    EXPECT_FALSE(MatchesPattern("oh hello there", "hello*"));
    EXPECT_TRUE(MatchesPattern("what?", "what?"));
    EXPECT_FALSE(MatchesPattern("whats", "what?"));
    EXPECT_TRUE(MatchesPattern("x [1] y", "*[1]*"));
    EXPECT_FALSE(MatchesPattern("x 1 y", "*[1]*"));
    EXPECT_TRUE(MatchesPattern("a-b#c", "A-B#C"));
    EXPECT_TRUE(MatchesPattern("[x]", QString::fromLatin1("\xA7x\xA8")));
    EXPECT_FALSE(
        MatchesPattern(QString::fromLatin1("\xA7x\xA8"), QString::fromLatin1("\xA7x\xA8")));
    EXPECT_TRUE(MatchesPattern("abcabd", "*ab*d"));
    EXPECT_TRUE(MatchesPattern("", "*"));
    EXPECT_FALSE(MatchesPattern("a", ""));
}

// (Cutting names at the hash, a second entry refused and the words of both
// are the block command's test.)
TEST_F(BlocksAndFiltersTest, BlockEntriesAreComparedAsText) {
    EXPECT_TRUE(AddBlock("Bob#1"));
    EXPECT_EQ(BlockedUsers(), QStringList{"Bob"}) << "the first entry fills the empty slot";
    EXPECT_TRUE(AddBlock("xy"));
    EXPECT_TRUE(AddBlock("x*"));
    EXPECT_TRUE(AddBlock("b*"));
    EXPECT_TRUE(IsBlocked("xanadu"));
    EXPECT_FALSE(RemoveBlock("bill")) << "b* blocks bill, but is no entry equal to it";
    EXPECT_TRUE(RemoveBlock("bob"));
    EXPECT_TRUE(IsBlocked("bob")) << "b* still holds";
    EXPECT_EQ(ReadTextLines(BlockedUsersFile()), (QStringList{"xy", "x*", "b*"}));

    for (const char* name : {"xy", "x*", "b*"})
        EXPECT_TRUE(RemoveBlock(name));
    EXPECT_EQ(BlockedUsers(), QStringList{QString()});
    EXPECT_FALSE(IsBlocked("bob"));
}

TEST_F(BlocksAndFiltersTest, FilesLoadWithoutEmptyLinesAndHandEditsCountAtTheNextTest) {
    writeFile(BlockedUsersFile(), "\r\nalpha\r\n\r\nbeta*\nGamma\r\n\r\n");
    LoadBlocks();
    EXPECT_EQ(BlockedUsers(), (QStringList{"alpha", "beta*", "Gamma"}));
    EXPECT_TRUE(IsBlocked("BetaMax"));
    SaveBlocks();
    QFile file(BlockedUsersFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("alpha\r\nbeta*\r\nGamma\r\n"));
    file.close();
    EXPECT_TRUE(RemoveBlock("gamma"));
    LoadBlocks(); // as the next start does
    EXPECT_FALSE(IsBlocked("gamma"));

    EXPECT_FALSE(IsBlocked("mallory"));
    writeFile(BlockedUsersFile(), "mallory\r\n");
    EXPECT_TRUE(IsBlocked("Mallory"));
    EXPECT_TRUE(AddBlock("eve"));
    EXPECT_EQ(ReadTextLines(BlockedUsersFile()), (QStringList{"mallory", "eve"}))
        << "an add keeps what was written by hand";

    QFile::remove(BlockedUsersFile());
    LoadBlocks();
    EXPECT_TRUE(QFile::exists(BlockedUsersFile())) << "a missing list is created empty";
    EXPECT_EQ(BlockedUsers(), QStringList{QString()});
}

TEST_F(BlocksAndFiltersTest, OnlyLinesWithAStarAreFilters) {
    writeFile(MessageFiltersFile(), "hello\r\n*buy gold*\r\nwhat?*\r\n*[1]*\r\n");
    LoadFilters();
    EXPECT_FALSE(IsFiltered("hello"));
    EXPECT_EQ(MessageFilters(), (QStringList{"*buy gold*", "what?*", "*[1]*"}));
    EXPECT_TRUE(IsFiltered("cheap: BUY GOLD now"));
    EXPECT_TRUE(IsFiltered("what? no"));
    EXPECT_FALSE(IsFiltered("whatever"));
    EXPECT_TRUE(IsFiltered("option [1]"));
    writeFile(MessageFiltersFile(), "*gold*\r\n");
    EXPECT_FALSE(IsFiltered("what? no")) << "a hand edit counts from the next test";
    EXPECT_TRUE(IsFiltered("buy gold"));
    QFile::remove(MessageFiltersFile());
    EXPECT_TRUE(IsFiltered("buy gold")) << "kept until the next load";
    writeFile(MessageFiltersFile(), "");
    LoadFilters();
    EXPECT_FALSE(IsFiltered("")) << "the empty slot of an empty list is skipped";
}
