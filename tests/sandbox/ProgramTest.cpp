#include "SandboxHarness.h"
#include "common/SandboxProcess.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace sandboxtest;

TEST(SandboxProgram, KeepsAccountsInItsFile) {
    QTemporaryDir dir;
    const QString accounts = dir.filePath("accounts.json");
    {
        SandboxProcess r;
        ASSERT_TRUE(r.start({"--accounts", accounts, "--account", "zed:pw"}));
        Client c(r.bncsPort);
        EXPECT_EQ(logOn(r.bnlsPort, c, "STAR", "zed", "pw"), "zed");
        Client newcomer(r.bncsPort);
        EXPECT_EQ(logOn(r.bnlsPort, newcomer, "STAR", "newcomer", "secret"), "newcomer");
    }
    SandboxProcess again;
    ASSERT_TRUE(again.start({"--accounts", accounts}));
    Client c(again.bncsPort);
    EXPECT_EQ(logOn(again.bnlsPort, c, "STAR", "newcomer", "wrong"), QString())
        << "the account came back";
    Client d(again.bncsPort);
    EXPECT_EQ(logOn(again.bnlsPort, d, "STAR", "newcomer", "secret"), "newcomer");
}

TEST(SandboxProgram, AnnouncesItsPortsAndEndsWhenItsControlInputCloses) {
    QProcess p;
    p.start(SandboxProcess::binary(), {"--bncs-port", "0", "--bnls-port", "0", "--control"});
    QByteArray out;
    ASSERT_TRUE(waitFor([&] { return (out += p.readAllStandardOutput()).count('\n') >= 2; }))
        << p.readAllStandardError().toStdString();
    const QRegularExpression lines("^BNCS listening on 127\\.0\\.0\\.1:[1-9]\\d*\n"
                                   "BNLS listening on 127\\.0\\.0\\.1:[1-9]\\d*\n$");
    EXPECT_TRUE(lines.match(QString::fromLatin1(out)).hasMatch()) << out.toStdString();
    p.closeWriteChannel();
    EXPECT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 0);
}

TEST(SandboxProgram, RefusesBadOptionsAndUnreadableFiles) {
    QProcess p;
    p.start(SandboxProcess::binary(), {"--residents", "many"});
    ASSERT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 2);
    EXPECT_TRUE(p.readAllStandardError().contains("bad value for --residents"));
    p.start(SandboxProcess::binary(),
            {"--bncs-port", "0", "--bnls-port", "0", "--hash-files", "/no/a,/no/b,/no/c"});
    ASSERT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 1);
    EXPECT_TRUE(p.readAllStandardError().contains("can't read /no/a"));
}
