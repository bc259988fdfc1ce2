// A person who runs the bot on a server sets it up from the terminal alone: a
// profile made with `corvantide profile new/set`, a userbase made and bound
// with `corvantide database`, a plug-in set to load at start with `corvantide
// plugin`, then, while that bot runs, a new trigger sent and the plug-in
// stopped and started from the terminal. A ranked user in the channel
// commands the bot through all of it.
#include "chat/TimedEvents.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "common/TerminalVerb.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

using Answer = VerbAnswer;

class TerminalVerbsEndToEnd : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        TimedEvents::instance().start();
        ASSERT_TRUE(sandbox.start());
    }
    void TearDown() override {
        TimedEvents::instance().stop();
        if (bot.state() != QProcess::NotRunning) {
            bot.closeWriteChannel();
            if (!bot.waitForFinished(10000)) bot.kill();
        }
    }

    static QString program() { return ProgramBinary(); }
    Answer verb(const QStringList& words) { return RunVerb(home.path(), words); }
    void setUp(const QStringList& words) {
        const Answer run = verb(words);
        ASSERT_EQ(run.status, 0) << words.join(u' ').toStdString() << ": "
                                 << run.err.toStdString();
    }

    bool ownerSees(const QString& text) {
        return waitFor([&] { return rtbChat(owner).text().contains(text); }, 20000);
    }

    SandboxProcess sandbox;
    QTemporaryDir home;
    QProcess bot;
    int owner = 0;
};

} // namespace

TEST_F(TerminalVerbsEndToEnd, AProfileAndUserbaseMadeOnTheTerminalLogOnAndObey) {
    const QString p = QStringLiteral("Keeper");
    setUp({QStringLiteral("profile"), QStringLiteral("new"), p});
    const QList<QPair<QString, QString>> values{
        {QStringLiteral("Account"), QStringLiteral("keeper")},
        {QStringLiteral("Password"), QStringLiteral("secret")},
        {QStringLiteral("Product"), QStringLiteral("StarCraft")},
        {QStringLiteral("Verbyte"), QStringLiteral("d3")},
        {QStringLiteral("Cdkey1"), QStringLiteral("7178075237576")},
        {QStringLiteral("Server"), sandbox.bncsServer()},
        {QStringLiteral("ServerBNLS"), sandbox.bnlsServer()},
        {QStringLiteral("Channel"), QStringLiteral("Verbs")},
        {QStringLiteral("Trigger"), QStringLiteral("!")},
        {QStringLiteral("Load at Startup"), QStringLiteral("on")}};
    for (const auto& [key, value] : values)
        setUp({QStringLiteral("profile"), QStringLiteral("set"), p, key, value});
    EXPECT_EQ(verb({QStringLiteral("profile"), QStringLiteral("get"), p, QStringLiteral("product")})
                  .out,
              QStringLiteral("STAR\n"));
    setUp({QStringLiteral("database"), QStringLiteral("new"), QStringLiteral("Crew")});
    setUp({QStringLiteral("database"), QStringLiteral("add"), QStringLiteral("Crew"),
           QStringLiteral("Owner"), QStringLiteral("100")});
    setUp({QStringLiteral("database"), QStringLiteral("bind"), QStringLiteral("Crew"), p});
    const QString plugins = home.filePath(QStringLiteral(".local/share/Corvantide/Plugins/"));
    ASSERT_TRUE(QDir().mkpath(plugins));
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(CORVANTIDE_TEST_DATA "/../../examples/plugins/greeter.js"),
                    plugins + QStringLiteral("greeter.js")));
    EXPECT_EQ(
        verb({QStringLiteral("plugin"), QStringLiteral("enable"), QStringLiteral("Greeter")}).out,
        QStringLiteral("'greeter' loads when the bot starts.\n"));
    const Answer noBot =
        verb({QStringLiteral("plugin"), QStringLiteral("start"), QStringLiteral("greeter")});
    EXPECT_EQ(noBot.status, 1);
    EXPECT_TRUE(noBot.err.startsWith(QStringLiteral("No Corvantide runs on this home")))
        << noBot.err.toStdString();

    bot.start(program(), {QStringLiteral("--headless"), QStringLiteral("--home"), home.path(),
                          QStringLiteral("--connect")});
    ASSERT_TRUE(bot.waitForStarted());
    owner = sandbox.loadProfile(QStringLiteral("owner"), QStringLiteral("Verbs"));
    SlotTable::instance().ConnectBot(owner);
    ASSERT_TRUE(waitFor([&] { return lvUsers(owner).count() == 2; }, 30000));

    // The plug-in Plugins.ini loads at start greets who joins.
    Bots(owner).Queue << QStringLiteral("/join Elsewhere") << QStringLiteral("/join Verbs");
    ASSERT_TRUE(ownerSees(QStringLiteral("<keeper> Hello owner, greetings from a plug-in.")));
    const QStringList plugin{QStringLiteral("plugin")};
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("list")}).out,
              QStringLiteral("greeter\trunning, loads at start\n"));
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("stop"), QStringLiteral("greeter")}).out,
              QStringLiteral("Stopped 'greeter'.\n"));
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("stop"), QStringLiteral("greeter")}).err,
              QStringLiteral("'greeter' is not running.\n"));
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("disable"), QStringLiteral("greeter")}).out,
              QStringLiteral("'greeter' no longer loads when the bot starts.\n"));
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("start"), QStringLiteral("greeter")}).out,
              QStringLiteral("Started 'greeter'.\n"));
    EXPECT_EQ(verb(plugin + QStringList{QStringLiteral("list")}).out,
              QStringLiteral("greeter\trunning, not loaded at start\n"));

    Bots(owner).Queue << QStringLiteral("!say obeying the terminal's userbase");
    ASSERT_TRUE(ownerSees(QStringLiteral("<keeper> obeying the terminal's userbase")));

    // The running bot takes the new trigger at once: the old one is silence.
    const Answer changed = verb({QStringLiteral("profile"), QStringLiteral("set"), p,
                                 QStringLiteral("Trigger"), QStringLiteral("#")});
    ASSERT_EQ(changed.status, 0) << changed.err.toStdString();
    EXPECT_EQ(changed.out, QStringLiteral("Set Trigger of 'Keeper' to '#'.\n"));
    Bots(owner).Queue << QStringLiteral("!say old trigger") << QStringLiteral("#say new trigger");
    ASSERT_TRUE(ownerSees(QStringLiteral("<keeper> new trigger")));
    EXPECT_FALSE(rtbChat(owner).text().contains(QStringLiteral("<keeper> old trigger")));

    // Lists changed on the terminal count at once in the running bot: a
    // filter hides the owner's next line, a macro answers the next command.
    setUp({QStringLiteral("filter"), QStringLiteral("add"), QStringLiteral("*hush*")});
    setUp({QStringLiteral("macro"), QStringLiteral("add"), QStringLiteral("greet"),
           QStringLiteral("Hello"), QStringLiteral("from"), QStringLiteral("a"),
           QStringLiteral("macro")});
    Bots(owner).Queue << QStringLiteral("hush hush") << QStringLiteral("#macro greet");
    ASSERT_TRUE(ownerSees(QStringLiteral("<keeper> Hello from a macro")));
    QString screen;
    EXPECT_TRUE(waitFor([&] {
        screen += QString::fromUtf8(bot.readAllStandardOutput());
        return screen.contains(QStringLiteral("#macro greet"));
    }));
    EXPECT_FALSE(screen.contains(QStringLiteral("hush hush")));

    // Refusals from the running bot come back with a failing status.
    const Answer taken = verb({QStringLiteral("profile"), QStringLiteral("new"), p.toLower()});
    EXPECT_EQ(taken.status, 1);
    EXPECT_EQ(taken.err, QStringLiteral("A profile named 'Keeper' already exists.\n"));
    const Answer wrongType = verb({QStringLiteral("profile"), QStringLiteral("set"), p,
                                   QStringLiteral("IdleTime"), QStringLiteral("soon")});
    EXPECT_EQ(wrongType.status, 1);
    EXPECT_EQ(wrongType.err, QStringLiteral("IdleTime takes a number, not 'soon'.\n"));
}
