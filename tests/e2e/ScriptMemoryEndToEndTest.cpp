// A script and a plug-in that allocate without bound, in a bot that runs
// headless against the sandbox under an address-space limit, as a service
// bot would under its unit's memory limit: each is stopped at its memory cap
// and unloaded with a red line naming it, the bot answers /ver and a typed
// line reaches the channel afterwards, its resident size is back near where
// it was before, and it ends cleanly at the end of its input.
#include "e2e/RunningProgram.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <sys/resource.h>

namespace {

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
    const VerbAnswer imported = importKeys(
        home.path(), profileKey(QStringLiteral("Eater"), QStringLiteral("eater"),
                                QStringLiteral("Sandbox"), sandbox) +
                         QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
                                        "\"FloodMode\"=dword:00000000\r\n"
                                        "\"ScriptMemoryLimit\"=dword:00000040\r\n\r\n"));
    ASSERT_EQ(imported.status, 0) << imported.err.toStdString();
    const QString settings = home.filePath(QStringLiteral(".config/Ostrelund/Corvantide/"));
    writeFile(settings + QStringLiteral("Script.txt"), kHungryScript);
    writeFile(settings + QStringLiteral("Plugins.ini"), "[AutoLoad]\nhungry=1\n");
    writeFile(home.filePath(QStringLiteral(".local/share/Corvantide/Plugins/hungry.js")),
              kHungryPlugin);

    RunningProgram bot;
    // Without the caps an allocation fails here long before the machine's
    // memory runs out, and the bot must live through that too.
    bot.setChildProcessModifier([] {
        const rlimit oneGiB{1L << 30, 1L << 30};
        setrlimit(RLIMIT_AS, &oneGiB);
    });
    ASSERT_TRUE(bot.headless(home.path(), {QStringLiteral("--connect")}));
    ASSERT_TRUE(bot.says(QStringLiteral("eater is present"))) << bot.out.toStdString();
    waitFor([] { return false; }, 1000);
    const qint64 before = residentKiB(bot.processId());
    ASSERT_GT(before, 0);

    sandbox.control({QStringLiteral("user Alice"), QStringLiteral("join Alice Sandbox"),
                     QStringLiteral("talk Alice eat")});
    EXPECT_TRUE(
        bot.says(QStringLiteral("Error -> Plugin hungry is unloaded and its memory freed: it "
                                "used more than 64 MB of memory (ScriptMemoryLimit) and was "
                                "stopped.")))
        << bot.out.toStdString();
    EXPECT_TRUE(
        bot.says(QStringLiteral("Error -> Script.txt is unloaded and its memory freed: it "
                                "used more than 64 MB of memory (ScriptMemoryLimit) and was "
                                "stopped.")))
        << bot.out.toStdString();

    bot.write("/ver\n");
    ASSERT_TRUE(bot.says(QStringLiteral("] Corvantide v"))) << bot.out.toStdString();
    ASSERT_EQ(bot.state(), QProcess::Running) << bot.readAllStandardError().toStdString();
    const qint64 after = residentKiB(bot.processId());
    EXPECT_LT(after, before + 32 * 1024) << "before " << before << " kB, after " << after << " kB";

    bot.write("hello sandbox\n");
    EXPECT_TRUE(bot.says(QStringLiteral("<eater> hello sandbox"))) << bot.out.toStdString();
    EXPECT_TRUE(bot.out.contains(QStringLiteral("[Eater] ")));
    EXPECT_EQ(bot.stop(), 0);
}
