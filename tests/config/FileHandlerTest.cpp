#include "config/FileHandler.h"

#include "QtPrinters.h"
#include "config/Folders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class Files : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir_.filePath(name); }

    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray readFile(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString read(const QString& section, const QString& key, const QString& def = {}) const {
        return ReadIni(path("Overrides.ini"), section, key, def);
    }

    QTemporaryDir dir_;
};

TEST_F(Files, ReadIniFollowsTheProfileFunctions) {
    writeFile(QStringLiteral("Overrides.ini"),
              "loose=before any section\r\n"
              "[Media]\r\n"
              "  winampName  =  Winamp 5  \r\n"
              "quoted=\"  kept blanks  \"\r\n"
              "half=\"open\r\n"
              "single=\"\r\n"
              "bare\r\n"
              "; wmpName=commented\r\n"
              "empty=\r\n"
              "dup=first\r\n"
              "DUP=second\r\n"
              "long=" +
                  QByteArray(300, 'x') +
                  "\r\n"
                  "[  Spaced ]\r\n"
                  "a=1\r\n"
                  "[media]\r\n"
                  "itunesName=in a later section of the same name\r\n");

    const std::pair<QStringList, QString> reads[] = {
        {{"MEDIA", "WinampName"}, "Winamp 5"},
        {{"Media", "quoted"}, "  kept blanks  "},
        {{"Media", "half"}, "\"open"},
        {{"Media", "single"}, "\""},
        {{"Media", "empty"}, ""},
        {{"Media", "dup"}, "first"},
        {{"Media", "long"}, QString(255, u'x')},
        // A key without '=' and a commented key are not values.
        {{"Media", "bare"}, "default"},
        {{"Media", "wmpName"}, "default"},
        // The first section of a name wins; blanks inside brackets are part of the name.
        {{"Media", "itunesName"}, "default"},
        {{"  Spaced ", "a"}, "1"},
        {{"", "loose"}, "default"},
        {{"Nope", "x"}, "default"},
    };
    for (const auto& [where, value] : reads)
        EXPECT_EQ(read(where[0], where[1], QStringLiteral("default")), value)
            << where.join(u'/').toStdString();

    bool found = false;
    EXPECT_EQ(ReadIni(path("Missing.ini"), QStringLiteral("Media"), QStringLiteral("x"),
                      QStringLiteral("x"), &found),
              QString())
        << "a missing file gives the empty text, not the default";
    EXPECT_FALSE(found);
    ReadIni(path("Overrides.ini"), QStringLiteral("Nope"), QStringLiteral("x"), {}, &found);
    EXPECT_TRUE(found);

    // Hand edits during a run count at the next read.
    writeFile(QStringLiteral("Overrides.ini"), "[Media]\nname=one\n");
    EXPECT_EQ(read(QStringLiteral("Media"), QStringLiteral("name")), QStringLiteral("one"));
    // Same size, same second: only the file's identity or fine time tells.
    writeFile(QStringLiteral("Overrides.ini"), "[Media]\nname=two\n");
    EXPECT_EQ(read(QStringLiteral("Media"), QStringLiteral("name")), QStringLiteral("two"));
    QFile::remove(path("Overrides.ini"));
    EXPECT_EQ(read(QStringLiteral("Media"), QStringLiteral("name"), QStringLiteral("d")),
              QString());
}

TEST_F(Files, ReadIniNumberTakesTheLeadingNumber) {
    writeFile(QStringLiteral("n.ini"),
              "[N]\nmixed=12abc\nempty=\nword=abc\nneg= -7\nhalf=2.5\nbig=99999999999\n");
    const auto number = [&](const char* key) {
        return ReadIniNumber(path("n.ini"), QStringLiteral("N"), QString::fromLatin1(key), 55);
    };
    EXPECT_EQ(number("mixed"), 12);
    EXPECT_EQ(number("empty"), 55);
    EXPECT_EQ(number("missing"), 55);
    EXPECT_EQ(number("word"), 0);
    EXPECT_EQ(number("neg"), -7);
    EXPECT_EQ(number("half"), 2) << "halves round to even";
    EXPECT_EQ(number("big"), 2147483647);
    EXPECT_EQ(LeadingNumber(u"3.5x"), 4);
    EXPECT_EQ(LeadingNumber(u"-.5"), 0);
    EXPECT_EQ(LeadingNumber(u"."), 0);
}

TEST_F(Files, ReadIniKeysListsWithNulsAndCutsAtTheBuffer) {
    writeFile(QStringLiteral("p.ini"), "[Main]\nfoo=bar\nbare\nBaz=qux\n[Other]\nx=y\n");
    EXPECT_EQ(ReadIniKeys(path("p.ini"), QStringLiteral("main")),
              QStringLiteral("foo") + QChar(0) + QStringLiteral("bare") + QChar(0) +
                  QStringLiteral("Baz") + QChar(0));
    EXPECT_EQ(ReadIniKeys(path("p.ini"), QStringLiteral("none")), QString());

    QByteArray big = "[Main]\n";
    for (int i = 0; i < 600; ++i)
        big += "key" + QByteArray::number(1000 + i) + "=v\n";
    writeFile(QStringLiteral("big.ini"), big);
    const QString keys = ReadIniKeys(path("big.ini"), QStringLiteral("Main"));
    EXPECT_EQ(keys.size(), 4094);
    EXPECT_TRUE(keys.startsWith(QStringLiteral("key1000") + QChar(0)));
    // 8 characters a key: 511 whole keys, then six characters of the next.
    EXPECT_TRUE(keys.endsWith(QStringLiteral("key1510") + QChar(0) + QStringLiteral("key151")));
}

TEST_F(Files, WriteIniKeepsTheRestOfTheFile) {
    writeFile(QStringLiteral("w.ini"), "; my notes\r\n[Main]\r\n  Key = old  \r\n\r\n"
                                       "[Other]\r\nx=1\r\n");
    EXPECT_TRUE(WriteIni(path("w.ini"), QStringLiteral("main"), QStringLiteral("KEY"),
                         QStringLiteral("new")));
    EXPECT_TRUE(WriteIni(path("w.ini"), QStringLiteral("Main"), QStringLiteral("added"),
                         QStringLiteral("2")));
    EXPECT_TRUE(
        WriteIni(path("w.ini"), QStringLiteral("Fresh"), QStringLiteral("k"), QStringLiteral("v")));
    EXPECT_EQ(readFile(QStringLiteral("w.ini")),
              QByteArray("; my notes\r\n[Main]\r\nKey=new\r\nadded=2\r\n\r\n"
                         "[Other]\r\nx=1\r\n\r\n[Fresh]\r\nk=v\r\n"));

    // A new file is made; a file of bare LF stays so.
    EXPECT_TRUE(WriteIni(path("new.ini"), QStringLiteral("S"), QStringLiteral("k"),
                         QStringLiteral("\u00E9")));
    EXPECT_EQ(readFile(QStringLiteral("new.ini")), QByteArray("[S]\r\nk=\xE9\r\n"));
    writeFile(QStringLiteral("lf.ini"), "[S]\nk=1\n");
    WriteIni(path("lf.ini"), QStringLiteral("S"), QStringLiteral("k"), QStringLiteral("2"));
    EXPECT_EQ(readFile(QStringLiteral("lf.ini")), QByteArray("[S]\nk=2\n"));
    EXPECT_EQ(ReadIni(path("lf.ini"), QStringLiteral("S"), QStringLiteral("k")),
              QStringLiteral("2"));
    // No temporary file is left beside it.
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files).size(), 3);
}

// (PathExists and TrimNull have no caller in the program.)
TEST_F(Files, ListFilesFindsFilesInAnyCaseInOrder) {
    EXPECT_EQ(ListFiles(path("*.ini")), QStringList{QString()});
    writeFile(QStringLiteral("b.ini"), "");
    writeFile(QStringLiteral("A.INI"), "");
    writeFile(QStringLiteral("c.txt"), "");
    QDir(dir_.path()).mkdir(QStringLiteral("folder.ini"));
    EXPECT_EQ(ListFiles(path("*.ini")),
              (QStringList{QStringLiteral("A.INI"), QStringLiteral("b.ini")}));
}

TEST_F(Files, FoldersLiveUnderTheHomeFolder) {
    const QString saved = HomeFolder();
    SetHomeFolder(dir_.path());
    const QString settings = GetSettingsPath();
    EXPECT_EQ(settings, dir_.path() + QStringLiteral("/.config/Ostrelund/Corvantide/"));
    struct stat info {};
    ASSERT_EQ(::stat(QFile::encodeName(settings).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    // Removed during a run, the folder comes back with the next call.
    QDir(settings).removeRecursively();
    EXPECT_TRUE(QDir(GetSettingsPath()).exists());

    EXPECT_EQ(GetProgramFolder(), dir_.path() + QStringLiteral("/.local/share/Corvantide"));
    EXPECT_EQ(GetSpecialFolder(FolderAppData), dir_.path() + QStringLiteral("/.config"));
    EXPECT_EQ(AutostartFile(),
              dir_.path() + QStringLiteral("/.config/autostart/net.ostrelund.Corvantide.desktop"));
    SetHomeFolder(saved);
}

} // namespace
