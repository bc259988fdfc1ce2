// The user's script and plug-ins in a sandbox channel: the shipped
// examples do what they promise, a runaway script is stopped while the bot
// goes on, plug-ins in JavaScript and in C hear packets and chat, and tidy
// the lines the user types, and both reach the main form, a C plug-in of an
// older interface loading and one of a newer interface refused.
#include "config/Folders.h"
#include "e2e/BotFixture.h"
#include "e2e/RunningProgram.h"
#include "platform/ListModel.h"
#include "plugins/JavaScriptObject.h"
#include "plugins/PluginHost.h"
#include "plugins/PluginLoader.h"
#include "plugins/PluginMainForm.h"
#include "plugins/objPlugin.h"
#include "session/MachineFacts.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>

namespace {

const QString kExamples =
    QDir::cleanPath(QStringLiteral(CORVANTIDE_TEST_DATA "/../../examples")) + u'/';

class ScriptEndToEnd : public BotFixture {
protected:
    void SetUp() override {
        BotFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        PluginHost::instance().clear();
        PluginHost::instance().options().clear();
    }
    void TearDown() override {
        BotFixture::TearDown();
        PluginHost::instance().clear();
        PluginHost::instance().setScript(nullptr);
        QFile::remove(GetSettingsPath() + QStringLiteral("Script.txt"));
        QFile::remove(GetSettingsPath() + QStringLiteral("Plugins.ini"));
        QDir(GetProgramFolder() + QStringLiteral("/Plugins")).removeRecursively();
    }

    static QByteArray example(const QString& name) {
        QFile file(kExamples + name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

    // A bot in the sandbox's channel with nobody else there.
    int online() {
        EXPECT_TRUE(sandbox.start(traced(
            {QStringLiteral("--residents"), QStringLiteral("0"), QStringLiteral("--control")})));
        return inChannel(QStringLiteral("scribe"), QStringLiteral("Sandbox"));
    }
};

TEST_F(ScriptEndToEnd, TheObjectsAnswerAScriptAndRefuseASlotWithoutAProfile) {
    const int i = SlotTable::instance().LoadProfile(QStringLiteral("Prober"));
    JavaScriptObject script(JavaScriptObject::MissingIsSilent);
    script.installGlobals(new objPlugin(&PluginMainForm::instance()));
    script.load(QStringLiteral(R"(
        function probe(i) {
            Corvan.AddText(0, 0, "probing", 255);
            return [Configuration.GetTrigger(i), Configuration.GetChannel(99),
                    Cache.BotOnline(99), Cache.BotProfile(i), Cache.UserFind(i, "nobody"),
                    Music.GetTrack(), typeof Cache.User(i, 5), BotIndex()].join("|");
        })"),
                QStringLiteral("probe.js"));
    QVariantList args{i};
    EXPECT_EQ(script.call(QStringLiteral("probe"), args).toString(),
              QStringLiteral(".||false|Prober|0||undefined|0"));
    EXPECT_TRUE(chat(0).contains(QStringLiteral("probing")));
    EXPECT_TRUE(chat(0).contains(
        QStringLiteral("Error -> GetChannel(BotIndex: 99) - raised error no profile is loaded in "
                       "slot 99")))
        << chat(0).toStdString();
    QVariantList none;
    EXPECT_FALSE(script.call(QStringLiteral("Event_Missing"), none).isValid());
}

TEST_F(ScriptEndToEnd, TheExampleScriptGreetsAndAnswersSeen) {
    writeFile(GetSettingsPath() + QStringLiteral("Script.txt"),
              example(QStringLiteral("Script.txt")));
    LoadScript();
    EXPECT_TRUE(chat(0).contains(QStringLiteral("Greeter script loaded")));
    online();

    control({"user Alice", "join Alice Sandbox"});
    EXPECT_TRUE(serverHears(QStringLiteral("Welcome to Sandbox, Alice!")));
    control({"talk Alice !seen Bob"});
    EXPECT_TRUE(serverHears(QStringLiteral("I have not seen Bob.")));
    control({"user Bob", "join Bob Sandbox", "leave Bob", "talk Alice !seen bob"});
    EXPECT_TRUE(serverHears(QStringLiteral("I saw Bob leaving just now.")));
    EXPECT_FALSE(chat(0).contains(QStringLiteral("Error ->"))) << chat(0).toStdString();
}

TEST_F(ScriptEndToEnd, ARunawayScriptIsStoppedAndTheBotGoesOn) {
    writeFile(GetSettingsPath() + QStringLiteral("Script.txt"), R"(
        function Event_UserTalk(BotIndex, Username, Message) {
            if (Message === "spin") for (;;) {}
            if (Message === "dive") (function down() { return down() + 1; })();
            Corvan.AddQueue(BotIndex, "heard " + Message);
        })");
    LoadScript();
    // No Event_Startup: said once, and the rest of the script works.
    EXPECT_TRUE(chat(0).contains(QStringLiteral("This error is related to the Startup() sub.")));
    online();

    control({"user Alice", "join Alice Sandbox", "talk Alice first"});
    EXPECT_TRUE(serverHears(QStringLiteral("heard first")));
    QElapsedTimer clock;
    clock.start();
    control({"talk Alice spin"});
    EXPECT_TRUE(saw(0, QStringLiteral("Error -> Script sub Event_UserTalk raised error - it ran "
                                      "longer than 2 seconds and was stopped")));
    EXPECT_LT(clock.elapsed(), 6000);
    control({"talk Alice dive"});
    EXPECT_TRUE(
        saw(0, QStringLiteral("Error -> Script sub Event_UserTalk raised error - RangeError")));
    control({"talk Alice still there?"});
    EXPECT_TRUE(serverHears(QStringLiteral("heard still there?")));
    EXPECT_FALSE(linesAtServer().contains(QStringLiteral("heard spin")));
}

TEST_F(ScriptEndToEnd, PluginsInJavaScriptAndCHearPacketsAndChatAndTidyTypedLines) {
    const QString folder = GetProgramFolder() + QStringLiteral("/Plugins/");
    writeFile(folder + QStringLiteral("greeter.js"), example(QStringLiteral("plugins/greeter.js")));
    ASSERT_TRUE(QFile::copy(QStringLiteral(CORVANTIDE_BINARY_DIR "/plugins/hello.so"),
                            folder + QStringLiteral("hello.so")));
    // Asks for chat events and has none of their members.
    writeFile(folder + QStringLiteral("mute.js"),
              "function Startup(form, plugin) { form.RegisterPlugin('mute', 1); }");
    writeFile(folder + QStringLiteral("idle.js"), "function Startup(form, plugin) {}");
    ASSERT_TRUE(PluginHost::setAutoLoad(QStringLiteral("greeter"), true));
    ASSERT_TRUE(PluginHost::setAutoLoad(QStringLiteral("mute"), true));
    ASSERT_TRUE(PluginHost::setAutoLoad(QStringLiteral("hello"), true));
    InstallPluginLoader();
    PluginHost::instance().ImportPlugins();
    EXPECT_TRUE(chat(0).contains(QStringLiteral("- Importing plugin \"greeter.js\"")));
    EXPECT_FALSE(PluginHost::instance().isLoaded(QStringLiteral("idle")));
    ListModel& options = PluginHost::instance().options();
    ASSERT_EQ(options.count(), 2);
    EXPECT_EQ(options.item(1).text, QStringLiteral("Packets received"));
    EXPECT_EQ(options.item(2).tag, QStringLiteral("hello.1"));
    const int i = online();

    control({"user Alice", "join Alice Sandbox"});
    EXPECT_TRUE(serverHears(QStringLiteral("Hello Alice, greetings from a plug-in.")));
    EXPECT_TRUE(serverHears(QStringLiteral("Hello Alice, greetings from C.")));
    EXPECT_TRUE(chat(0).contains(
        QStringLiteral("Error -> Plugin caused error for mute ChatEvent(2) - Object doesn't "
                       "support this property or method: 'Event_UserJoin'")))
        << chat(0).toStdString();

    for (int n = 1; n <= options.count(); ++n)
        PluginHost::instance().OptionClicked(options.item(n).tag);
    for (const char* counter : {"greeter has seen (\\d+) packets", "hello.so has counted (\\d+)"}) {
        const QRegularExpressionMatch counted =
            QRegularExpression(QString::fromLatin1(counter)).match(chat(0));
        ASSERT_TRUE(counted.hasMatch()) << counter << chat(0).toStdString();
        EXPECT_GT(counted.captured(1).toInt(), 3);
    }

    Bots(i).Queue << QStringLiteral("#note to self") << QStringLiteral("brb, coffee")
                  << QStringLiteral("gg");
    EXPECT_TRUE(serverHears(QStringLiteral("be right back, coffee")));
    EXPECT_TRUE(serverHears(QStringLiteral("good game, well played"))) << "C lengthens a text";
    EXPECT_FALSE(linesAtServer().contains(QStringLiteral("#note to self")));
}

TEST_F(ScriptEndToEnd, PluginsOfEachInterfaceReachTheMainFormAndANewerOneIsRefused) {
    ReadMachineFacts();
    SlotTable& table = SlotTable::instance();
    table.UnloadProfile(QStringLiteral("Stored")); // kept in the store, not in a slot
    Bots(table.LoadProfile(QStringLiteral("Stored"))).Config.setTrigger(QStringLiteral("!"));
    ASSERT_TRUE(table.UnloadProfile(QStringLiteral("Stored")));

    const QString folder = GetProgramFolder() + QStringLiteral("/Plugins/");
    QDir().mkpath(folder);
    for (const char* name : {"older", "reach", "newer"}) {
        const QString file = QString::fromLatin1(name) + QStringLiteral(".so");
        ASSERT_TRUE(QFile::copy(QStringLiteral(CORVANTIDE_BINARY_DIR "/tests/plugins/") + file,
                                folder + file));
    }
    writeFile(folder + QStringLiteral("reachjs.js"), R"(
        function Startup(form, plugin) {
            var slot = form.LoadProfile("Stored");
            form.SelectBot(slot);
            form.WriteChat(slot, 0xFF00, "reachjs.js loaded Stored into slot " + slot +
                           ", on screen " + form.CurrentIndex() +
                           ", unknown " + form.LoadProfile("Nobody"));
        })");
    InstallPluginLoader();
    PluginHost& host = PluginHost::instance();

    EXPECT_EQ(host.StartPlugin(QStringLiteral("older")), 0) << chat(0).toStdString();
    EXPECT_TRUE(chat(0).contains(QStringLiteral("older.so speaks through the first interface")));
    EXPECT_NE(host.StartPlugin(QStringLiteral("newer")), 0);
    EXPECT_TRUE(chat(0).contains(
        QStringLiteral("it was built for plug-in interface version 3, newer than this bot's "
                       "version 2")))
        << chat(0).toStdString();
    EXPECT_FALSE(host.isLoaded(QStringLiteral("newer")));

    ASSERT_EQ(host.StartPlugin(QStringLiteral("reachjs")), 0) << chat(0).toStdString();
    const int slot = table.findProfile(QStringLiteral("Stored"));
    ASSERT_GT(slot, 0);
    EXPECT_EQ(table.CurrentIndex(), slot);
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("reachjs.js loaded Stored into slot %1, on screen %1, unknown 0").arg(slot)))
        << rtbChat(slot).text().toStdString();

    ASSERT_EQ(host.StartPlugin(QStringLiteral("reach")), 0) << chat(0).toStdString();
    const QString processor = Machine().ProcessorName;
    EXPECT_FALSE(processor.isEmpty());
    EXPECT_NE(processor, qEnvironmentVariable("USER"));
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("reach.so found Stored in slot %1, trigger !, processor %2")
            .arg(slot)
            .arg(processor)))
        << rtbChat(slot).text().toStdString();
}

} // namespace
