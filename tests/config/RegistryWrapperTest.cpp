#include "config/RegistryWrapper.h"

#include "QtPrinters.h"
#include "platform/Cp1252.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString kKey = QStringLiteral("HKCU\\Software\\Test");

class Store : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir_.filePath(name); }

    QByteArray readFile(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void writeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QStringList keys(const QString& key) {
        QStringList names;
        store_.EnumKeys(key, names);
        return names;
    }

    QTemporaryDir dir_;
    RegistryWrapper store_{dir_.filePath(QStringLiteral("settings.sqlite"))};
};

TEST_F(Store, FileIsPrivateToTheUser) {
    ASSERT_TRUE(store_.isOpen());
    struct stat info {};
    ASSERT_EQ(::stat(QFile::encodeName(store_.fileName()).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(Store, PathGrammar) {
    ASSERT_TRUE(store_.CreateKey(QStringLiteral("hkcu\\software\\x")));
    const std::pair<const char*, bool> spellings[] = {
        // One key under every spelling of the root and of the names.
        {"HKCU\\SOFTWARE\\X", true},
        {"HKEY_CURRENT_USER\\Software\\x", true},
        {"hkey_current_user\\Software\\x", true},
        {"HKCU\\\\Software\\\\x\\\\", true},
        {"HKCUxyz\\Software\\x", true}, // the root is the first four characters
        {"HKCU", true},                 // a root alone names the root itself
        {"HKEY_CLASSES_ROOT", true},
        {"HKXX\\Software\\x", false}, // unknown roots match nothing
        {"HKC\\Software\\x", false},
        {"HKCUX", false},
    };
    for (const auto& [spelling, exists] : spellings)
        EXPECT_EQ(store_.KeyExists(QLatin1String(spelling)), exists) << spelling;
    EXPECT_EQ(keys(QStringLiteral("HKCU")), QStringList{QStringLiteral("software")});
    QStringList names;
    EXPECT_EQ(store_.EnumKeys(QStringLiteral("Nowhere\\Software"), names), -1);
    EXPECT_EQ(store_.CreateKey(QStringLiteral("Nowhere\\Software")), 0);
    EXPECT_EQ(store_.WriteDWORD(QStringLiteral("Nowhere\\Software"), QStringLiteral("a"), 1), 0);

    // The local machine's root is there, empty and read-only.
    const QString machine = QStringLiteral("HKLM\\Software\\Winamp");
    EXPECT_EQ(store_.CreateKey(machine), 0);
    EXPECT_EQ(store_.WriteSTRING(machine, QString(), QStringLiteral("/opt/winamp")), 0);
    EXPECT_EQ(store_.ReadSTRING(machine, QString(), QStringLiteral("fallback")),
              QStringLiteral("fallback"));
    EXPECT_EQ(store_.ReadDWORD(machine, QStringLiteral("x"), 42), 42);
    EXPECT_TRUE(store_.KeyExists(QStringLiteral("HKLM")));

    // Names keep their case and match without it.
    store_.WriteSTRING(kKey, QStringLiteral("MixedCase"), QStringLiteral("one"));
    store_.WriteSTRING(kKey, QStringLiteral("MIXEDCASE"), QStringLiteral("two"));
    EXPECT_EQ(store_.ReadSTRING(kKey, QStringLiteral("mixedcase")), QStringLiteral("two"));
    QStringList values;
    ASSERT_EQ(store_.EnumValues(kKey, names, values), 1);
    EXPECT_EQ(names[0], QStringLiteral("MixedCase"));
    EXPECT_EQ(keys(QStringLiteral("HKCU\\software")),
              (QStringList{QStringLiteral("Test"), QStringLiteral("x")}));
}

TEST_F(Store, StringReadRules) {
    const auto readBack = [&](const QString& stored) {
        store_.WriteSTRING(kKey, QStringLiteral("v"), stored);
        return store_.ReadSTRING(kKey, QStringLiteral("v"), QStringLiteral("default"));
    };
    EXPECT_EQ(readBack(QString(254, u'a')), QString(254, u'a'));
    EXPECT_EQ(readBack(QString(255, u'a')), QString(254, u'a'));
    EXPECT_EQ(readBack(QString(300, u'a')), QStringLiteral("default"));
    EXPECT_EQ(readBack(QStringLiteral("  abc  ")), QStringLiteral("abc  "));
    EXPECT_EQ(readBack(QStringLiteral("ab") + QChar(0) + QStringLiteral("cd")),
              QStringLiteral("ab"));
    // The limit is on the stored bytes: one byte per character of the code page.
    EXPECT_EQ(readBack(QString(254, QChar(0x20AC))), QString(254, QChar(0x20AC)));
    EXPECT_EQ(readBack(QStringLiteral("snow \u2603")), QStringLiteral("snow ?"));

    EXPECT_EQ(readBack(QString()), QString());
    EXPECT_EQ(store_.ReadSTRING(kKey, QStringLiteral("v"), QStringLiteral("d"), true),
              QStringLiteral("d"));
    EXPECT_EQ(store_.ReadSTRING(kKey, QStringLiteral("missing"), QStringLiteral("d")),
              QStringLiteral("d"));
    EXPECT_EQ(store_.ReadSTRING(kKey + QStringLiteral("\\Missing"), QStringLiteral("v"),
                                QStringLiteral("d")),
              QStringLiteral("d"));
}

TEST_F(Store, TypedValues) {
    EXPECT_EQ(store_.ReadDWORD(kKey, QStringLiteral("n"), 77), 77);
    store_.WriteDWORD(kKey, QStringLiteral("n"), -5);
    EXPECT_EQ(store_.ReadDWORD(kKey, QStringLiteral("n"), 77), -5);
    // A value of another type is not there for a reader of this type.
    EXPECT_EQ(store_.ReadSTRING(kKey, QStringLiteral("n"), QStringLiteral("d")),
              QStringLiteral("d"));
    store_.WriteSTRING(kKey, QStringLiteral("n"), QStringLiteral("5"));
    EXPECT_EQ(store_.ReadDWORD(kKey, QStringLiteral("n"), 77), 77);

    // (Binary values are written only by an import: WriteBinary, ReadBinary,
    // StrToBin and isBinValid have no caller in the program.)
    // "@" is the default value for strings only.
    store_.WriteSTRING(kKey, QStringLiteral("@"), QStringLiteral("default text"));
    EXPECT_EQ(store_.ReadSTRING(kKey, QString()), QStringLiteral("default text"));
    store_.WriteDWORD(kKey, QStringLiteral("@"), 3);
    EXPECT_EQ(store_.ReadDWORD(kKey, QStringLiteral("@")), 3);
    EXPECT_EQ(store_.ReadSTRING(kKey, QString()), QStringLiteral("default text"));

    EXPECT_TRUE(store_.KillValue(kKey, QStringLiteral("N")));
    EXPECT_FALSE(store_.ValueExists(kKey, QStringLiteral("n")));
    EXPECT_EQ(store_.KillValue(kKey + QStringLiteral("\\Missing"), QStringLiteral("n")), 0);
}

TEST_F(Store, WritesToMissingKeysFollowTheCreateSetting) {
    const QString key = kKey + QStringLiteral("\\A\\B");
    store_.setCreateKeyIfDoesntExists(false);
    EXPECT_EQ(store_.WriteDWORD(key, QStringLiteral("n"), 1), 0);
    EXPECT_EQ(store_.WriteSTRING(key, QStringLiteral("s"), QStringLiteral("x")), 0);
    EXPECT_FALSE(store_.KeyExists(kKey));
    store_.setCreateKeyIfDoesntExists(true);
    EXPECT_NE(store_.WriteDWORD(key, QStringLiteral("n"), 1), 0);
    EXPECT_TRUE(store_.KeyExists(key));
    EXPECT_EQ(store_.CreateKey(key), 1) << "an existing key is no failure";
    EXPECT_EQ(store_.CreateKey(kKey + u'\\' + QString(256, u'k')), 0) << "names stop at 255";
}

TEST_F(Store, EnumerationIsStableAndAlwaysHasASlot) {
    QStringList names, values;
    EXPECT_EQ(store_.EnumKeys(kKey, names), -1);
    EXPECT_EQ(names, QStringList{QString()});
    store_.CreateKey(kKey);
    EXPECT_EQ(store_.EnumKeys(kKey, names), 0);
    EXPECT_EQ(names, QStringList{QString()});
    EXPECT_EQ(store_.EnumValues(kKey, names, values), 0);
    EXPECT_EQ(values, QStringList{QString()});
    EXPECT_FALSE(store_.HaveSubkey(kKey));

    for (const char* name : {"delta", "Alpha", "charlie", "Bravo"})
        store_.CreateKey(kKey + u'\\' + QString::fromLatin1(name));
    const QStringList expected = {QStringLiteral("Alpha"), QStringLiteral("Bravo"),
                                  QStringLiteral("charlie"), QStringLiteral("delta")};
    EXPECT_EQ(store_.EnumKeys(kKey, names), 4);
    EXPECT_EQ(names, expected);
    EXPECT_TRUE(store_.HaveSubkey(kKey));

    store_.WriteDWORD(kKey, QStringLiteral("z"), -1);
    store_.WriteSTRING(kKey, QStringLiteral(" padded "), QStringLiteral("  text"));
    store_.WriteBinary(kKey, QStringLiteral("bin"), QString(600, u'A'));
    EXPECT_EQ(store_.EnumValues(kKey, names, values), 3);
    EXPECT_EQ(names,
              (QStringList{QStringLiteral("z"), QStringLiteral("padded"), QStringLiteral("bin")}));
    EXPECT_EQ(values[0], QStringLiteral("-1"));
    EXPECT_EQ(values[1], QStringLiteral("text"));
    EXPECT_EQ(values[2].size(), 255 * 3 - 1) << "binary data is listed up to 255 bytes";
    EXPECT_EQ(store_.EnumValues(kKey, names, values, RegistryWrapper::TypeDword), 1);
    EXPECT_EQ(names, QStringList{QStringLiteral("z")});
}

TEST_F(Store, DeletionLeavesKeysThatHaveSubkeys) {
    store_.CreateKey(kKey + QStringLiteral("\\Parent\\Child"));
    store_.WriteSTRING(kKey + QStringLiteral("\\Parent"), QStringLiteral("v"), QStringLiteral("x"));

    EXPECT_EQ(store_.KillKey(kKey + QStringLiteral("\\Parent")), 1) << "it opens";
    EXPECT_TRUE(store_.KeyExists(kKey + QStringLiteral("\\Parent")));
    EXPECT_NE(store_.DeleteKey(QStringLiteral("Software\\Test\\Parent")), 0);
    EXPECT_TRUE(store_.KeyExists(kKey + QStringLiteral("\\Parent")));

    EXPECT_EQ(store_.DeleteKey(QStringLiteral("software\\test\\parent\\child")), 0);
    EXPECT_NE(store_.DeleteKey(QStringLiteral("software\\test\\parent\\child")), 0);
    EXPECT_EQ(store_.KillKey(kKey + QStringLiteral("\\Parent")), 1);
    EXPECT_FALSE(store_.KeyExists(kKey + QStringLiteral("\\Parent")));
    EXPECT_EQ(store_.KillKey(kKey + QStringLiteral("\\Parent")), 0);

    // Values go with their key: a new key of the same name starts empty.
    store_.CreateKey(kKey + QStringLiteral("\\Parent"));
    EXPECT_FALSE(store_.ValueExists(kKey + QStringLiteral("\\Parent"), QStringLiteral("v")));
    EXPECT_TRUE(store_.KillKey(QStringLiteral("HKCU")));
    EXPECT_TRUE(store_.KeyExists(QStringLiteral("HKCU"))) << "a root is never deleted";
}

TEST_F(Store, RenameAndCloneRefuseOrCarryDwordsAndStringsOnly) {
    const QString parent = QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles");
    const QString main = parent + QStringLiteral("\\Main");
    store_.WriteSTRING(main, QStringLiteral("Account"), QStringLiteral("corvan"));
    store_.WriteDWORD(main, QStringLiteral("IdleTime"), 5);
    store_.WriteBinary(main, QStringLiteral("Blob"), QStringLiteral("01"));
    store_.CreateKey(parent + QStringLiteral("\\Other"));
    store_.CreateKey(parent + QStringLiteral("\\Nested\\Child"));

    // Same name but for case: rename is done already, clone has nothing to do.
    EXPECT_TRUE(store_.RenameKey(parent, QStringLiteral("Main"), QStringLiteral("MAIN")));
    EXPECT_EQ(keys(parent).first(), QStringLiteral("Main"));
    EXPECT_FALSE(store_.CloneKey(parent, QStringLiteral("Main"), QStringLiteral("MAIN")));
    EXPECT_FALSE(store_.RenameKey(parent, QStringLiteral("Missing"), QStringLiteral("New")));
    EXPECT_FALSE(store_.RenameKey(parent, QStringLiteral("Main"), QStringLiteral("other")));
    EXPECT_FALSE(store_.CloneKey(parent, QStringLiteral("Main"), QStringLiteral("Other")));
    EXPECT_FALSE(store_.RenameKey(parent, QStringLiteral("Nested"), QStringLiteral("Moved")));
    EXPECT_FALSE(store_.CloneKey(parent, QStringLiteral("Nested"), QStringLiteral("Moved")));
    EXPECT_EQ(keys(parent), (QStringList{QStringLiteral("Main"), QStringLiteral("Nested"),
                                         QStringLiteral("Other")}));
    EXPECT_TRUE(store_.KeyExists(parent + QStringLiteral("\\Nested\\Child")));

    ASSERT_TRUE(store_.CloneKey(parent, QStringLiteral("Main"), QStringLiteral("Copy")));
    ASSERT_TRUE(store_.RenameKey(parent, QStringLiteral("Main"), QStringLiteral("Renamed")));
    EXPECT_FALSE(store_.KeyExists(main));
    for (const char* name : {"Copy", "Renamed"}) {
        const QString key = parent + u'\\' + QString::fromLatin1(name);
        EXPECT_EQ(store_.ReadSTRING(key, QStringLiteral("Account")), QStringLiteral("corvan"));
        EXPECT_EQ(store_.ReadDWORD(key, QStringLiteral("IdleTime")), 5);
        EXPECT_FALSE(store_.ValueExists(key, QStringLiteral("Blob")));
    }
    QStringList names, values;
    store_.EnumValues(parent + QStringLiteral("\\Copy"), names, values);
    EXPECT_EQ(names, (QStringList{QStringLiteral("IdleTime"), QStringLiteral("Account")}));
    // An empty key still comes into being.
    EXPECT_TRUE(store_.CloneKey(parent, QStringLiteral("Other"), QStringLiteral("Other2")));
    EXPECT_TRUE(store_.KeyExists(parent + QStringLiteral("\\Other2")));
}

// Reads are remembered; a change made under any spelling of the path, or by
// deleting, renaming or importing, must still show at the next read.
TEST_F(Store, ReadsSeeEveryChangeWhateverItsSpelling) {
    const QString key = QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles\\Main");
    EXPECT_EQ(store_.ReadDWORD(key, QStringLiteral("IdleTime"), -1), -1);
    store_.WriteDWORD(QStringLiteral("HKEY_CURRENT_USER\\software\\corvantide4\\PROFILES\\main"),
                      QStringLiteral("idletime"), 7);
    EXPECT_EQ(store_.ReadDWORD(key, QStringLiteral("IdleTime"), -1), 7);
    store_.KillValue(key, QStringLiteral("IDLETIME"));
    EXPECT_EQ(store_.ReadDWORD(key, QStringLiteral("IdleTime"), -1), -1);

    store_.WriteSTRING(key, QStringLiteral("Account"), QStringLiteral("before"));
    EXPECT_EQ(store_.ReadSTRING(key, QStringLiteral("Account")), QStringLiteral("before"));
    ASSERT_TRUE(store_.RenameKey(QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles"),
                                 QStringLiteral("Main"), QStringLiteral("Other")));
    EXPECT_FALSE(store_.ValueExists(key, QStringLiteral("Account")));
    ASSERT_TRUE(store_.ImportRegText("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Corvantide4\\"
                                     "Profiles\\Main]\r\n\"Account\"=\"after\"\r\n"));
    EXPECT_EQ(store_.ReadSTRING(key, QStringLiteral("Account")), QStringLiteral("after"));
}

TEST_F(Store, ExportFormat) {
    const QString key = QStringLiteral("HKCU\\Software\\Export");
    store_.WriteDWORD(key, QStringLiteral("Count"), -1);
    store_.WriteBinary(key, QStringLiteral("Blob"), QStringLiteral("0a ff"));
    store_.WriteSTRING(key, QStringLiteral("Path"), QStringLiteral("C:\\x \"q\""));
    store_.CreateKey(key + QStringLiteral("\\Sub\\Deeper"));
    store_.CreateKey(key + QStringLiteral("\\Another"));

    QStringList seen;
    ASSERT_TRUE(store_.ExportToReg(QStringLiteral("hkcu\\software\\export"), path("out.reg"), true,
                                   [&](const QString& k) { seen.append(k); }));
    EXPECT_EQ(readFile(QStringLiteral("out.reg")).toStdString(),
              QByteArray("REGEDIT4\r\n\r\n"
                         "[HKEY_CURRENT_USER\\Software\\Export]\r\n"
                         "@=\"\"\r\n"
                         "\"Path\"=\"C:\\\\x \\\"q\\\"\"\r\n"
                         "\"Blob\"=hex:0A,FF\r\n"
                         "\"Count\"=dword:FFFFFFFF\r\n"
                         "\r\n"
                         "[HKEY_CURRENT_USER\\Software\\Export\\Another]\r\n@=\"\"\r\n\r\n"
                         "[HKEY_CURRENT_USER\\Software\\Export\\Sub]\r\n@=\"\"\r\n\r\n"
                         "[HKEY_CURRENT_USER\\Software\\Export\\Sub\\Deeper]\r\n@=\"\"\r\n\r\n")
                  .toStdString());
    EXPECT_EQ(seen.size(), 4);
    EXPECT_EQ(seen.first(), QStringLiteral("HKEY_CURRENT_USER\\Software\\Export"));

    // An empty key comes back, without the default value its "@=\"\"" line names.
    RegistryWrapper other(QStringLiteral(":memory:"));
    ASSERT_TRUE(other.ImportFromReg(path("out.reg")));
    EXPECT_TRUE(other.KeyExists(key + QStringLiteral("\\Another")));
    EXPECT_FALSE(other.ValueExists(key + QStringLiteral("\\Another"), QString()));

    ASSERT_TRUE(store_.ExportToReg(key, path("flat.reg"), false));
    EXPECT_FALSE(readFile(QStringLiteral("flat.reg")).contains("Another"));

    // An existing file is never overwritten, nor is a missing key exported.
    writeFile(QStringLiteral("taken.reg"), "mine");
    EXPECT_FALSE(store_.ExportToReg(key, path("taken.reg"), true));
    EXPECT_EQ(readFile(QStringLiteral("taken.reg")), QByteArray("mine"));
    EXPECT_FALSE(store_.ExportToReg(key + QStringLiteral("\\Missing"), path("none.reg"), true));
    EXPECT_FALSE(QFile::exists(path("none.reg")));
}

// An import reads what regedit writes (texts hold anything between their
// quotes, escaped as regedit escapes them) and names by its number every line
// it passes over or reads by a guess, and goes on past it. What each file
// leaves is shown as a backup of HKCU\Software writes it, one key a line.
TEST_F(Store, ImportReadsRegeditsLinesAndNamesEveryLineItCannotRead) {
    struct Row {
        const char* name;
        const char* before; // a file imported first, when not null
        const char* file;   // lines end in CR LF; <NUL> and <SOH> are those bytes
        const char* holds;  // "[Key] value value", a line per key
        const char* notes;
        int values;
    };
    const Row rows[] = {
        {"texts", nullptr, R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Import]
"Trigger"="="
"Channels0"="Op \"Quoted\" = yes"
"IdleMsg"="1+1=2 is math"
"Path"="C:\\Games\\"
"Say \"hi\""="x"
"Old"=hex(1):61,0d,0a,62,00
)",
         R"([Import] "Trigger"="=" "Channels0"="Op \"Quoted\" = yes" "IdleMsg"="1+1=2 is math" )"
         R"("Path"="C:\\Games\\" "Say \"hi\""="x" "Old"=hex(1):61,0D,0A,62,00)",
         "", 6},
        {"spaces, case, comments, continued lines, numbers", nullptr, R"(regedit4
[HKEY_CURRENT_USER\Software\Import]
  "Spaced "  =  "padded"  
; "Comment"="no"
"Hex"=HEX:41,42
"Long"=hex:41,\
   42,43
"Num"=DWORD:0000002a
[HKEY_CURRENT_USER\Software\Import\New]
"Made"=dword:1
)",
         "[Import] \"Spaced \"=\"padded\" \"Hex\"=hex:41,42 \"Long\"=hex:41,42,43 "
         "\"Num\"=dword:0000002A\n[Import\\New] \"Made\"=dword:00000001",
         "", 5},
        {"deletions", R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Import]
@="old default"
"Gone"="x"
[HKEY_CURRENT_USER\Software\Doomed]
)",
         R"(REGEDIT4
[HKEY_CURRENT_USER\Software\Import]
@=""
"Gone"=-
[-HKEY_CURRENT_USER\Software\Doomed]
"Ignored"="the section of a deleted key has no body"
)",
         "[Import]", "", 0},
        {"lines it cannot read", nullptr, R"(REGEDIT4
"Stray"="before any key"
[HKCU\Software\Bad]
"First"=dword:00000001
"Broken"=dword:12x
"Nul<NUL>Name"="x"
"Blob"=hex:4G
"A"="B"="C"
"A"=x=y
"Multi"=hex(7):41,00,00
Bare="x"
"Open"="quote
<SOH>garbage<NUL>after the NUL
[HKXX\Software\Nowhere]
"Lost"="x"
[HKEY_LOCAL_MACHINE\Software\Machine]
"Lost"="x"
[HKCU\Software\Bad]
"Later"=dword:00000002
"Wide"=dword:123456789
)",
         "[Bad] \"First\"=dword:00000001 \"Broken\"=dword:00000012 \"Later\"=dword:00000002 "
         "\"Wide\"=dword:23456789",
         R"(line 2: a value before the first [key]; skipped: "Stray"="before any key"
line 5: dword:12x is not up to eight hexadecimal digits; stored 18
line 6: the value name holds a NUL; skipped: "Nul\x00Name"="x"
line 7: hex:4G is not hexadecimal; skipped: "Blob"=hex:4G
line 8: more follows the text's closing quote: ="C"; skipped: "A"="B"="C"
line 9: the data is no quoted text, dword:, hex: or -; skipped: "A"=x=y
line 10: hex(7) is a type the settings do not keep; skipped: "Multi"=hex(7):41,00,00
line 11: the value name is not in double quotes; skipped: Bare="x"
line 12: the text's closing quote is missing; skipped: "Open"="quote
line 13: the value name is not in double quotes; skipped: \x01garbage\x00after the NUL
line 14: [HKXX\Software\Nowhere]: the key's root is unknown; its values were skipped
line 16: [HKEY_LOCAL_MACHINE\Software\Machine]: HKEY_LOCAL_MACHINE is read-only here; )"
         "its values were skipped\n"
         "line 20: dword:123456789 is not up to eight hexadecimal digits; stored 591751049",
         4},
    };
    int n = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RegistryWrapper store(QStringLiteral(":memory:"));
        if (row.before) {
            ASSERT_TRUE(store.ImportRegText(QByteArray(row.before).replace("\n", "\r\n")));
        }
        store.setCreateKeyIfDoesntExists(false);
        const QString file = QStringLiteral("in%1.reg").arg(++n);
        writeFile(file, QByteArray(row.file)
                            .replace("\n", "\r\n")
                            .replace("<NUL>", QByteArray(1, '\0'))
                            .replace("<SOH>", "\x01"));
        RegistryWrapper::ImportReport report;
        ASSERT_TRUE(store.ImportFromReg(path(file), &report));
        EXPECT_EQ(report.notes.join(u'\n'), QString::fromUtf8(row.notes));
        EXPECT_EQ(report.values, row.values);
        EXPECT_TRUE(store.CreateKeyIfDoesntExists());
        // "@=\"\"" deletes the default; no row leaves one.
        EXPECT_FALSE(store.ValueExists(QStringLiteral("HKCU\\Software\\Import"), QString()));
        ASSERT_TRUE(store.ExportToReg(QStringLiteral("HKCU\\Software"), path(file + u'x'), true));
        QString holds = cp1252::decode(readFile(file + u'x'));
        holds.replace(QStringLiteral("\r\n\r\n"), QStringLiteral("\n"))
            .replace(QStringLiteral("\r\n"), QStringLiteral(" "))
            .remove(QStringLiteral(" @=\"\""))
            .remove(QStringLiteral("HKEY_CURRENT_USER\\Software\\"));
        EXPECT_EQ(holds.section(u'\n', 2).trimmed(), QString::fromUtf8(row.holds));
    }

    EXPECT_FALSE(store_.ImportFromReg(path("missing.reg")));
    writeFile(QStringLiteral("v5.reg"), "Windows Registry Editor Version 5.00\r\n\r\n");
    EXPECT_FALSE(store_.ImportFromReg(path("v5.reg")));
    // Lines end in CR LF: a file of bare LF is one long first line.
    writeFile(QStringLiteral("lf.reg"), "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Lf]\n");
    EXPECT_FALSE(store_.ImportFromReg(path("lf.reg")));
}

// Whatever a profile's key holds (any names, texts of any Windows-1252
// bytes, numbers, binary data) comes back from a backup byte for byte.
TEST_F(Store, EveryValueOfAProfileSurvivesExportAndImport) {
    std::mt19937 random(20261124);
    const auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const auto bytes = [&](int low, int length) {
        QByteArray out;
        for (int i = 0; i < length; ++i)
            out.append(char(pick(low, 255)));
        return out;
    };
    const QString profiles = QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles");
    for (int i = 0; i < 300; ++i) {
        // Key names: any printable byte but the path's backslash.
        const QString profile = QStringLiteral("P%1").arg(i % 40) +
                                cp1252::decode(bytes(0x20, pick(0, 8))).remove(u'\\');
        const QString key = profiles + u'\\' + profile;
        QString name = cp1252::decode(bytes(0x20, pick(1, 12)));
        if (name == u"@") name = QStringLiteral("@@");
        switch (pick(0, 4)) {
        case 0:
            store_.WriteDWORD(key, name, qint32(random()));
            break;
        case 1:
            store_.WriteBinary(key, name, RegistryWrapper::BinToStr(bytes(0, pick(0, 20))));
            break;
        case 2: // a key's default text
            store_.WriteSTRING(key, QString(), cp1252::decode(bytes(1, pick(1, 30))));
            break;
        default:
            store_.WriteSTRING(key, name, cp1252::decode(bytes(1, pick(0, 40))));
            break;
        }
    }
    ASSERT_TRUE(store_.ExportToReg(profiles, path("backup.reg"), true));
    RegistryWrapper other(QStringLiteral(":memory:"));
    RegistryWrapper::ImportReport report;
    ASSERT_TRUE(other.ImportFromReg(path("backup.reg"), &report));
    EXPECT_EQ(report.notes, QStringList{});
    // The export writes every byte of every value; the same file twice is
    // the same tree twice.
    ASSERT_TRUE(other.ExportToReg(profiles, path("again.reg"), true));
    EXPECT_EQ(readFile(QStringLiteral("again.reg")), readFile(QStringLiteral("backup.reg")));
    const auto valuesOf = [&](RegistryWrapper& store, const QString& profile) {
        QStringList names;
        QStringList values;
        store.EnumValues(profiles + u'\\' + profile, names, values);
        for (qsizetype i = 0; i < names.size(); ++i)
            names[i] += QStringLiteral(" = ") + values[i];
        names.sort();
        return names;
    };
    for (const QString& profile : keys(profiles))
        EXPECT_EQ(valuesOf(other, profile), valuesOf(store_, profile));
}

// A store held by some other program (a database tool, a backup) is not
// blamed on a Corvantide: the words name the program and its process.
TEST(StoreFile, AStoreLockedByAnotherProgramNamesIt) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("s.sqlite"));
    { RegistryWrapper store(file); }
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    ASSERT_GE(holder, 0);
    if (holder == 0) {
        const int fd = ::open(QFile::encodeName(file).constData(), O_RDWR);
        struct flock whole {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        const char done = ::fcntl(fd, F_SETLK, &whole) == 0 ? 'y' : 'n';
        (void)!::write(ready[1], &done, 1);
        // The lock stays with the process through the exec.
        ::execl("/bin/sleep", "sleep", "30", static_cast<char*>(nullptr));
        ::_exit(1);
    }
    char locked = 0;
    ASSERT_EQ(::read(ready[0], &locked, 1), 1);
    ASSERT_EQ(locked, 'y');
    const QString exe = QStringLiteral("/proc/%1/exe").arg(holder);
    for (int i = 0; i < 200 && !QFile::symLinkTarget(exe).endsWith(QLatin1String("sleep")); ++i)
        ::usleep(10000);
    RegistryWrapper second(file);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(second.openFailure(), RegistryWrapper::OpenFailure::Locked);
    EXPECT_TRUE(second.openError().contains(
        QStringLiteral("another program, sleep (process %1), holds it").arg(holder)))
        << second.openError().toStdString();
}

// A file that is no store is never replaced in silence; a folder that
// refuses writes has words of its own.
TEST(StoreFile, OpenFailuresAreToldApartAndNoStoreIsMovedAside) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("s.sqlite"));
    const auto notAStore = [&](const QByteArray& bytes, const char* words) {
        QFile junk(file);
        ASSERT_TRUE(junk.open(QIODevice::WriteOnly | QIODevice::Truncate));
        junk.write(bytes);
        junk.close();
        RegistryWrapper store(file);
        ASSERT_TRUE(store.isOpen()) << store.openError().toStdString();
        EXPECT_TRUE(store.WriteDWORD(kKey, QStringLiteral("fresh"), 1));
        EXPECT_TRUE(store.movedAsideNotice().contains(QLatin1String(words)))
            << store.movedAsideNotice().toStdString();
        QFile aside(store.movedAside());
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly)) << store.movedAside().toStdString();
        EXPECT_EQ(aside.readAll(), bytes);
        EXPECT_TRUE(QFileInfo(store.movedAside())
                        .fileName()
                        .startsWith(QStringLiteral("s.sqlite.damaged-%1")
                                        .arg(QDate::currentDate().toString(Qt::ISODate))));
    };
    notAStore("a text file\n", "was not a settings store");
    notAStore(QByteArray(), "was empty");
    QByteArray damaged;
    {
        QFile store(file);
        ASSERT_TRUE(store.open(QIODevice::ReadOnly));
        damaged = store.readAll();
    }
    ASSERT_GT(damaged.size(), 4096);
    damaged.replace(4096, 16, QByteArray(16, '\xA5')); // a table's page header
    notAStore(damaged, "was damaged");

    if (::geteuid() != 0) { // the superuser writes where others may not
        const QString locked = dir.filePath(QStringLiteral("ro"));
        ASSERT_TRUE(QDir().mkpath(locked));
        ::chmod(QFile::encodeName(locked).constData(), 0500);
        RegistryWrapper store(locked + QStringLiteral("/s.sqlite"));
        EXPECT_EQ(store.openFailure(), RegistryWrapper::OpenFailure::ReadOnly);
        EXPECT_TRUE(store.openError().contains(QStringLiteral("is read-only")));
        ::chmod(QFile::encodeName(locked).constData(), 0700);
    }
}

} // namespace
