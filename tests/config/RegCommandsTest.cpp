#include "config/RegCommands.h"

#include "QtPrinters.h"
#include "config/RegistryWrapper.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>

namespace {

struct Command {
    QString out;
    QString err;
    QTextStream outStream{&out};
    QTextStream errStream{&err};
};

TEST(RegCommands, ExportThenImportElsewhere) {
    QTemporaryDir dir;
    const QString reg = dir.filePath(QStringLiteral("backup.reg"));
    const QString key = QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles\\Main");
    {
        RegistryWrapper store(dir.filePath(QStringLiteral("a.sqlite")));
        store.WriteSTRING(key, QStringLiteral("Account"), QStringLiteral("corvan"));
        Command run;
        EXPECT_EQ(ExportRegCommand(store, key, reg, run.outStream, run.errStream), 0);
        EXPECT_EQ(run.out, QStringLiteral("Exported %1 to %2\n").arg(key, reg));
        EXPECT_EQ(run.err, QString());

        Command again;
        EXPECT_EQ(ExportRegCommand(store, key, reg, again.outStream, again.errStream), 1);
        EXPECT_TRUE(again.err.contains(QStringLiteral("already exists")));
    }
    // (A whole import and its words are the program's end-to-end test.)
    RegistryWrapper other(dir.filePath(QStringLiteral("b.sqlite")));

    QFile bad(dir.filePath(QStringLiteral("bad.reg")));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("Windows Registry Editor Version 5.00\r\n");
    bad.close();
    Command refused;
    EXPECT_EQ(ImportRegCommand(other, bad.fileName(), refused.outStream, refused.errStream), 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("not a REGEDIT4 file")));
    EXPECT_EQ(refused.out, QString());

    // A file with a line it could not read is no success, whatever went in.
    QFile partly(dir.filePath(QStringLiteral("partly.reg")));
    ASSERT_TRUE(partly.open(QIODevice::WriteOnly));
    partly.write("REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\X]\r\n\"A\"=\"B\"=\"C\"\r\n"
                 "\"D\"=\"E\"\r\n");
    partly.close();
    Command noted;
    EXPECT_EQ(ImportRegCommand(other, partly.fileName(), noted.outStream, noted.errStream), 1);
    EXPECT_EQ(noted.out, QString());
    EXPECT_EQ(noted.err,
              QStringLiteral("%1 line 3: more follows the text's closing quote: =\"C\"; skipped: "
                             "\"A\"=\"B\"=\"C\"\nImported 1 value from %1, but 1 line was not "
                             "read as written (see above)\n")
                  .arg(partly.fileName()));
}

} // namespace
