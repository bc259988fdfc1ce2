// A script and a plug-in that allocate without bound, in a bot that runs
// headless against the sandbox under an address-space limit, as a service
// bot would under its unit's memory limit: each is stopped at its memory cap
// and unloaded with a red line naming it, the bot answers /ver afterwards,
// and its resident size is back near where it was before.
#include "common/SandboxProcess.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

QString program() {
    return QStringLiteral(CORVANTIDE_BINARY_DIR "/corvantide");
}

void write(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

qint64 residentKiB(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    const QRegularExpressionMatch rss =
        QRegularExpression(QStringLiteral("VmRSS:\\s+(\\d+) kB")).match(status.readAll());
    return rss.hasMatch() ? rss.captured(1).toLongLong() : -1;
}

// Keeps an 8 MB buffer per turn of an endless loop.
const char* const kHungryScript = R"(
var keep = [];
function Event_Startup() {}
function Event_UserTalk(BotIndex, Username, Message) {
    if (Message !== "eat") return;
    for (;;) keep.push(new ArrayBuffer(8 << 20));
})";

// Doubles a string for ever: each step asks for one allocation twice the last.
const char* const kHungryPlugin = R"(
var keep = [];
function Startup(form, plugin) { form.RegisterPlugin("hungry", 1); }
function Event_UserTalk(BotIndex, Username, Message) {
    if (Message !== "eat") return;
    var s = "x";
    for (;;) { s = s + s; keep.push(s.indexOf("y")); }
}
for (const m of ["Event_UserPresent", "Event_UserJoin", "Event_UserLeave", "Event_WhisperFrom",
                 "Event_Broadcast", "Event_Channel", "Event_UserUpdate", "Event_WhisperTo",
                 "Event_ChannelFull", "Event_ChannelDoesNotExist", "Event_ChannelRestricted",
                 "Event_Info", "Event_Error", "Event_UserEmote", "Event_EnteredChat"])
    this[m] = function () {};
)";

} // namespace

TEST(ScriptMemoryEndToEnd, AScriptAndAPluginThatEatMemoryAreUnloadedAndTheBotGoesOn) {
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start(
        {QStringLiteral("--residents"), QStringLiteral("0"), QStringLiteral("--control")}));
    QTemporaryDir home;
    const QString reg = home.filePath(QStringLiteral("bot.reg"));
    write(reg, QStringLiteral(
                   "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\Eater]\r\n"
                   "\"Account\"=\"eater\"\r\n\"Password\"=\"pass\"\r\n\"Product\"=\"STAR\"\r\n"
                   "\"Verbyte\"=\"d3\"\r\n\"Cdkey1\"=\"7178075237576\"\r\n"
                   "\"Channel\"=\"Sandbox\"\r\n\"Server\"=\"%1\"\r\n\"ServerBNLS\"=\"%2\"\r\n"
                   "\"Load at Startup\"=dword:00000001\r\n\r\n"
                   "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
                   "\"FloodMode\"=dword:00000000\r\n\"ScriptMemoryLimit\"=dword:00000040\r\n\r\n")
                   .arg(sandbox.bncsServer(), sandbox.bnlsServer())
                   .toLatin1());
    QProcess import;
    import.start(program(),
                 {QStringLiteral("--home"), home.path(), QStringLiteral("--import-reg"), reg});
    ASSERT_TRUE(import.waitForFinished(20000));
    ASSERT_EQ(import.exitCode(), 0) << import.readAllStandardError().toStdString();
    const QString settings = home.filePath(QStringLiteral(".config/Ostrelund/Corvantide/"));
    write(settings + QStringLiteral("Script.txt"), kHungryScript);
    write(settings + QStringLiteral("Plugins.ini"), "[AutoLoad]\nhungry=1\n");
    write(home.filePath(QStringLiteral(".local/share/Corvantide/Plugins/hungry.js")),
          kHungryPlugin);

    QProcess bot;
    // Without the caps an allocation fails here long before the machine's
    // memory runs out, and the bot must live through that too.
    bot.setChildProcessModifier([] {
        const rlimit oneGiB{1L << 30, 1L << 30};
        setrlimit(RLIMIT_AS, &oneGiB);
    });
    bot.start(program(), {QStringLiteral("--headless"), QStringLiteral("--home"), home.path(),
                          QStringLiteral("--connect")});
    ASSERT_TRUE(bot.waitForStarted());
    QString out;
    const auto seen = [&](const QString& text, int ms = 20000) {
        return waitFor(
            [&] {
                out += QString::fromUtf8(bot.readAllStandardOutput());
                return out.contains(text);
            },
            ms);
    };
    ASSERT_TRUE(seen(QStringLiteral("eater is present"))) << out.toStdString();
    waitFor([] { return false; }, 1000);
    const qint64 before = residentKiB(bot.processId());
    ASSERT_GT(before, 0);

    sandbox.control({QStringLiteral("user Alice"), QStringLiteral("join Alice Sandbox"),
                     QStringLiteral("talk Alice eat")});
    EXPECT_TRUE(seen(QStringLiteral("Error -> Plugin hungry is unloaded and its memory freed: it "
                                    "used more than 64 MB of memory (ScriptMemoryLimit) and was "
                                    "stopped.")))
        << out.toStdString();
    EXPECT_TRUE(seen(QStringLiteral("Error -> Script.txt is unloaded and its memory freed: it "
                                    "used more than 64 MB of memory (ScriptMemoryLimit) and was "
                                    "stopped.")))
        << out.toStdString();

    bot.write("/ver\n");
    ASSERT_TRUE(seen(QStringLiteral("] Corvantide v"))) << out.toStdString();
    ASSERT_EQ(bot.state(), QProcess::Running) << bot.readAllStandardError().toStdString();
    const qint64 after = residentKiB(bot.processId());
    EXPECT_LT(after, before + 32 * 1024) << "before " << before << " kB, after " << after << " kB";

    bot.closeWriteChannel();
    ASSERT_TRUE(bot.waitForFinished(20000));
    EXPECT_EQ(bot.exitCode(), 0);
}
