#include "commands/DefinitionWrapper.h"
#include "commands/MacroWrapper.h"
#include "commands/ProfanityReader.h"
#include "commands/QuoteWrapper.h"
#include "common/ChatFixture.h"
#include "config/TextListFile.h"

#include <QSet>

class TextStoresTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        for (const char* file : {"Definitions.ini", "Quotes.ini", "Macros.ini"})
            QFile::remove(GetSettingsPath() + QLatin1String(file));
        slot = SlotTable::instance().LoadProfile(QStringLiteral("alpha"));
    }

    static QByteArray bytes(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    QStringList grab(const QString& name, bool expectFound = true) {
        QStringList lines{"junk"};
        bool found = !expectFound;
        MacroWrapper::instance().Grab(name, lines, found);
        EXPECT_EQ(found, expectFound) << name.toStdString();
        return lines;
    }

    static QString encoded(const ProfanityReader& reader, QString text) {
        reader.EncodeProfanity(text);
        return text;
    }
    static QString decoded(const ProfanityReader& reader, QString text) {
        reader.DecodeProfanity(text);
        return text;
    }

    DefinitionWrapper defs;
    QuoteWrapper quotes;
    int slot = 0;
};

TEST_F(TextStoresTest, EntriesAreFoundByIdInAnyCaseAndStoredInTheAnsiCodePage) {
    EXPECT_EQ(defs.GetItem("x"), QString());
    EXPECT_TRUE(QFile::exists(defs.fileName())) << "a missing file is created";
    EXPECT_TRUE(defs.AddItem("bnet", "Battle.net, the service"));
    EXPECT_EQ(bytes(defs.fileName()), QByteArray("bnet \xA6 Battle.net, the service\r\n"));

    // A blank text is no entry; a second separator cuts the text; a line
    // without its line end (a hand edit) keeps it apart from the next.
    writeFile(defs.fileName(), "blank \xA6    \r\ncut \xA6  left \xA6 right\r\nlast \xA6 end");
    EXPECT_TRUE(defs.AddItem("Blank", "filled"));
    EXPECT_EQ(defs.GetItem("blank"), QString()) << "the first line of the ID answers";
    EXPECT_EQ(defs.GetItem("cut"), QStringLiteral("left"));
    EXPECT_EQ(defs.GetItem("last"), QStringLiteral("end"));
    EXPECT_EQ(ReadTextLines(defs.fileName()).last(), QString("Blank \u00A6 filled"));

    // Removing rewrites only the lines that count.
    writeFile(defs.fileName(),
              "a \xA6 one\r\nstray line\r\nA \xA6 two\r\nb \xA6 three\r\nx\xA6y\r\n");
    EXPECT_FALSE(defs.RemoveItem("c"));
    EXPECT_TRUE(bytes(defs.fileName()).contains("stray line")) << "untouched without a match";
    EXPECT_TRUE(defs.RemoveItem("a"));
    EXPECT_EQ(bytes(defs.fileName()), QByteArray("b \xA6 three\r\n"));
}

TEST_F(TextStoresTest, ListsSendTenIdsAReplyInTheInformationColour) {
    defs.List(slot, false);
    EXPECT_EQ(Bots(slot).Queue, QStringList{"There are no definitions created yet."});
    Bots(slot).Queue.clear();

    QByteArray file;
    for (int i = 1; i <= 11; ++i)
        file += "d" + QByteArray::number(i) + " \xA6 text\r\n";
    writeFile(defs.fileName(), "junk\r\n" + file);
    defs.List(slot, false);
    EXPECT_EQ(Bots(slot).Queue,
              (QStringList{"Definitions: d1, d2, d3, d4, d5, d6, d7, d8, d9, d10.",
                           "Definitions: d11."}));

    CurrentTheme().status.Information = 0x123456;
    writeFile(quotes.fileName(), file.left(file.indexOf("d11")));
    quotes.List(slot, true);
    const QString chat = rtbChat(slot).text();
    EXPECT_EQ(chat.count("Quotes: "), 1) << "ten IDs make one reply, no empty second";
    EXPECT_TRUE(chat.contains("Quotes: d1, d2, d3, d4, d5, d6, d7, d8, d9, d10."));
    EXPECT_EQ(rtbChat(slot).formatAt(chat.indexOf("Quotes")).color, 0x123456u);
}

TEST_F(TextStoresTest, RandomQuotesComeFromLinesThatCount) {
    EXPECT_EQ(quotes.GetRandom(), QStringLiteral("Unable to get a random quote."));
    writeFile(quotes.fileName(), "no separator\r\nhere either\r\n");
    EXPECT_EQ(quotes.GetRandom(), QStringLiteral("Unable to get a random quote."));

    writeFile(quotes.fileName(), "only \xA6  spaced out \r\n");
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(quotes.GetRandom(), QStringLiteral(" spaced out ")) << "not trimmed";

    writeFile(quotes.fileName(), "1 \xA6 one\r\n\r\nbad\r\n2 \xA6 two\r\n3 \xA6 three");
    QSet<QString> seen;
    for (int i = 0; i < 300; ++i)
        seen.insert(quotes.GetRandom());
    EXPECT_EQ(seen, (QSet<QString>{"one", "two", "three"}));
}

TEST_F(TextStoresTest, MacrosAreReadInBlocksAndTheFirstOfANameCounts) {
    writeFile(MacroWrapper::fileName(),
              "outside\r\nGreet {\r\nHello!\r\n\r\n/me waves\r\n}\r\nskipped\r\n"
              "greet {\r\nsecond\r\n}\r\nempty {\r\n}\r\n"
              "first {\r\na\r\nnext {\r\nb\r\nopen {\r\nc");
    MacroWrapper::instance().Reload();
    EXPECT_EQ(grab("GREET"), (QStringList{"Hello!", "/me waves"}));
    EXPECT_EQ(grab("empty"), QStringList{});
    EXPECT_EQ(grab("first"), QStringList{"a"});
    EXPECT_EQ(grab("next"), QStringList{"b"});
    EXPECT_EQ(grab("open"), QStringList{"c"});
    EXPECT_EQ(grab("outside", false), QStringList{});
    EXPECT_EQ(grab("Greet {", false), QStringList{});

    writeFile(MacroWrapper::fileName(), "first {\r\nedited by hand\r\n}\r\n");
    EXPECT_EQ(grab("first"), QStringList{"edited by hand"}) << "a changed file is read again";
    QFile::remove(MacroWrapper::fileName());
    EXPECT_EQ(grab("first"), QStringList{"edited by hand"}) << "held until reloaded";
    MacroWrapper::instance().Reload();
    EXPECT_EQ(grab("first", false), QStringList{});
    EXPECT_TRUE(QFile::exists(MacroWrapper::fileName()));
}

TEST_F(TextStoresTest, ProfanityPlainCaseSensitiveReplacementBothWays) {
    const ProfanityReader none;
    EXPECT_EQ(encoded(none, "anything"), QStringLiteral("anything")) << "a missing file";
    EXPECT_EQ(decoded(none, "anything"), QStringLiteral("anything"));
    writeFile(ProfanityReader::file(), "[Main]\r\na=b\r\nx=ass\r\n");
    const ProfanityReader reader;
    EXPECT_EQ(encoded(reader, "bob"), QStringLiteral("aoa"));
    EXPECT_EQ(decoded(reader, "aoa"), QStringLiteral("bob"));
    EXPECT_EQ(encoded(reader, "BOB"), QStringLiteral("BOB"));
    EXPECT_EQ(encoded(reader, "class"), QStringLiteral("clx"));
    // The listing's trailing NUL gives an empty part, which changes nothing.
    EXPECT_EQ(reader.entries(), (QStringList{"a\rb", "x\rass", "\r"}));

    // Empty values, and later entries that work on earlier output.
    writeFile(ProfanityReader::file(), "[Main]\r\ngone=\r\nq=p\r\nr=q\r\n");
    const ProfanityReader chained;
    EXPECT_EQ(encoded(chained, "gone"), QStringLiteral("gone")) << "nothing to look for";
    EXPECT_EQ(decoded(chained, "all gone"), QStringLiteral("all "));
    EXPECT_EQ(encoded(chained, "p"), QStringLiteral("r")) << "p became q, then q became r";
    EXPECT_EQ(decoded(chained, "r"), QStringLiteral("q")) << "decoding walks forwards too";
}
