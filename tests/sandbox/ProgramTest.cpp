#include "SandboxHarness.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace sandboxtest;

namespace {

const QString kProgram = QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide-sandbox");

// Starts the program and reads the two ports it announces.
struct Running {
    explicit Running(const QStringList& arguments) {
        process.start(kProgram, QStringList{"--bncs-port", "0", "--bnls-port", "0"} + arguments);
        const QRegularExpression line("^(BNCS|BNLS) listening on 127\\.0\\.0\\.1:(\\d+)$");
        (void)QTest::qWaitFor(
            [&] {
                while (process.canReadLine()) {
                    const auto m = line.match(QString::fromLatin1(process.readLine()).trimmed());
                    if (m.hasMatch())
                        (m.captured(1) == "BNCS" ? bncs : bnls) = m.captured(2).toUShort();
                }
                return (bncs && bnls) || process.state() == QProcess::NotRunning;
            },
            10000);
    }
    ~Running() {
        process.kill();
        process.waitForFinished();
    }
    QProcess process;
    quint16 bncs = 0, bnls = 0;
};

} // namespace

TEST(SandboxProgram, AnnouncesItsPortsAndKeepsAccountsInItsFile) {
    QTemporaryDir dir;
    const QString accounts = dir.filePath("accounts.json");
    {
        Running r({"--accounts", accounts, "--account", "zed:pw"});
        ASSERT_TRUE(r.bncs && r.bnls) << r.process.readAllStandardError().toStdString();
        Client c(r.bncs);
        EXPECT_EQ(logOn(r.bnls, c, "STAR", "zed", "pw"), "zed");
        Client newcomer(r.bncs);
        EXPECT_EQ(logOn(r.bnls, newcomer, "STAR", "newcomer", "secret"), "newcomer");
    }
    Running again({"--accounts", accounts});
    ASSERT_TRUE(again.bncs);
    Client c(again.bncs);
    EXPECT_EQ(logOn(again.bnls, c, "STAR", "newcomer", "wrong"), QString())
        << "the account came back";
    Client d(again.bncs);
    EXPECT_EQ(logOn(again.bnls, d, "STAR", "newcomer", "secret"), "newcomer");
}

TEST(SandboxProgram, EndsWhenItsControlInputCloses) {
    Running r({"--control"});
    ASSERT_TRUE(r.bncs && r.bnls) << r.process.readAllStandardError().toStdString();
    r.process.closeWriteChannel();
    EXPECT_TRUE(r.process.waitForFinished(10000));
    EXPECT_EQ(r.process.exitCode(), 0);
}

TEST(SandboxProgram, RefusesBadOptionsAndUnreadableFiles) {
    QProcess p;
    p.start(kProgram, {"--residents", "many"});
    ASSERT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 2);
    EXPECT_TRUE(p.readAllStandardError().contains("bad value for --residents"));
    p.start(kProgram,
            {"--bncs-port", "0", "--bnls-port", "0", "--hash-files", "/no/a,/no/b,/no/c"});
    ASSERT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 1);
    EXPECT_TRUE(p.readAllStandardError().contains("can't read /no/a"));
}
