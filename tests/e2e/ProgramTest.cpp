// The program as a user starts it: headless on the terminal, with a profile
// imported from a REGEDIT4 file, logging on to the sandbox with --connect.
#include "common/SandboxProcess.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QString program() {
    return QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide");
}

} // namespace

TEST(Program, HeadlessStartsUpAndEndsCleanlyAtEndOfInput) {
    QTemporaryDir home;
    QProcess bot;
    bot.start(program(), {QStringLiteral("--headless"), QStringLiteral("--home"), home.path()});
    ASSERT_TRUE(bot.waitForStarted());
    bot.closeWriteChannel();
    ASSERT_TRUE(bot.waitForFinished(20000));
    EXPECT_EQ(bot.exitCode(), 0);
    const QString out = QString::fromUtf8(bot.readAllStandardOutput());
    EXPECT_TRUE(out.startsWith(QStringLiteral("Welcome to Corvantide v"))) << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("- There are no bots set to be loaded!")));
    EXPECT_TRUE(out.contains(QStringLiteral("Completed all startup tasks successfully.")));
}

TEST(Program, AnImportedProfileLogsOnAndTypedLinesReachTheChannel) {
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start());
    QTemporaryDir home;
    const QString reg = home.filePath(QStringLiteral("profile.reg"));
    QFile file(reg);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral(
                   "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\Cli]\r\n"
                   "\"Account\"=\"clibot\"\r\n\"Password\"=\"pass\"\r\n\"Product\"=\"STAR\"\r\n"
                   "\"Verbyte\"=\"d3\"\r\n\"Cdkey1\"=\"7178075237576\"\r\n\"Channel\"=\"Cli\"\r\n"
                   "\"Server\"=\"%1\"\r\n\"ServerBNLS\"=\"%2\"\r\n"
                   "\"Load at Startup\"=dword:00000001\r\n\r\n")
                   .arg(sandbox.bncsServer(), sandbox.bnlsServer())
                   .toLatin1());
    file.close();
    QProcess import;
    import.start(program(),
                 {QStringLiteral("--home"), home.path(), QStringLiteral("--import-reg"), reg});
    ASSERT_TRUE(import.waitForFinished(20000));
    ASSERT_EQ(import.exitCode(), 0) << import.readAllStandardError().toStdString();

    QProcess bot;
    bot.start(program(), {QStringLiteral("--headless"), QStringLiteral("--home"), home.path(),
                          QStringLiteral("--connect")});
    ASSERT_TRUE(bot.waitForStarted());
    QString out;
    const auto seen = [&](const char* text) {
        return waitFor([&] {
            out += QString::fromUtf8(bot.readAllStandardOutput());
            return out.contains(QString::fromLatin1(text));
        });
    };
    ASSERT_TRUE(seen("[Cli] ")) << out.toStdString();
    ASSERT_TRUE(seen("clibot is present")) << out.toStdString();
    bot.write("hello sandbox\n");
    EXPECT_TRUE(seen("<clibot> hello sandbox")) << out.toStdString();
    bot.closeWriteChannel();
    ASSERT_TRUE(bot.waitForFinished(20000));
    EXPECT_EQ(bot.exitCode(), 0);
}
