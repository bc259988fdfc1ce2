#include "commands/ProfanityReader.h"

#include "common/ChatFixture.h"

class ProfanityReaderTest : public ChatFixture {
protected:
    static QString encoded(const ProfanityReader& reader, QString text) {
        reader.EncodeProfanity(text);
        return text;
    }
    static QString decoded(const ProfanityReader& reader, QString text) {
        reader.DecodeProfanity(text);
        return text;
    }
};

TEST_F(ProfanityReaderTest, PlainCaseSensitiveReplacementBothWays) {
    writeFile(ProfanityReader::file(), "[Main]\r\na=b\r\nx=ass\r\n");
    const ProfanityReader reader;
    EXPECT_EQ(encoded(reader, "bob"), QStringLiteral("aoa"));
    EXPECT_EQ(decoded(reader, "aoa"), QStringLiteral("bob"));
    EXPECT_EQ(encoded(reader, "BOB"), QStringLiteral("BOB"));
    EXPECT_EQ(encoded(reader, "class"), QStringLiteral("clx"));
    // The listing's trailing NUL gives an empty part, which changes nothing.
    EXPECT_EQ(reader.entries(), (QStringList{"a\rb", "x\rass", "\r"}));
}

TEST_F(ProfanityReaderTest, EmptyValuesAndLaterEntriesWorkOnEarlierOutput) {
    writeFile(ProfanityReader::file(), "[Main]\r\ngone=\r\nq=p\r\nr=q\r\n");
    const ProfanityReader reader;
    EXPECT_EQ(encoded(reader, "gone"), QStringLiteral("gone")) << "nothing to look for";
    EXPECT_EQ(decoded(reader, "all gone"), QStringLiteral("all "));
    EXPECT_EQ(encoded(reader, "p"), QStringLiteral("r")) << "p became q, then q became r";
    EXPECT_EQ(decoded(reader, "r"), QStringLiteral("q")) << "decoding walks forwards too";
}

TEST_F(ProfanityReaderTest, AMissingFileGivesAnEmptyTable) {
    const ProfanityReader reader;
    EXPECT_EQ(encoded(reader, "anything"), QStringLiteral("anything"));
    EXPECT_EQ(decoded(reader, "anything"), QStringLiteral("anything"));
}
