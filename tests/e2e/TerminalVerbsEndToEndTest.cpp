// A person who runs the bot on a server sets it up from the terminal alone,
// typing the README's "Your own profile" lines as they stand: a profile made
// with `corvantide profile new/set`, a userbase made and bound with
// `corvantide database`, a plug-in set to load at start with `corvantide
// plugin`. The bot then logs on to a sandbox that, like the servers in use,
// refuses an old version byte, and while it runs a new trigger is sent and
// the plug-in stopped and started from the terminal. A ranked user in the
// channel commands the bot through all of it.
#include "e2e/BotFixture.h"
#include "e2e/RunningProgram.h"
#include "platform/ListModel.h"

#include <QTemporaryDir>

namespace {

class TerminalVerbsEndToEnd : public BotFixture, protected Terminal {
protected:
    void SetUp() override {
        BotFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
    }

    RunningProgram bot;
    int owner = 0;
};

} // namespace

// The shell lines of the README's terminal recipe, each split into its words.
static QList<QStringList> readmeRecipe() {
    QFile readme(QDir::cleanPath(QStringLiteral(CORVANTIDE_TEST_DATA "/../../README.md")));
    if (!readme.open(QIODevice::ReadOnly)) return {};
    const QString text = QString::fromUtf8(readme.readAll());
    const qsizetype section = text.indexOf(QStringLiteral("\n## Your own profile"));
    const qsizetype start = text.indexOf(QStringLiteral("```sh\n"), section) + 6;
    const qsizetype end = text.indexOf(QStringLiteral("```"), start);
    QList<QStringList> commands;
    for (const QString& line : text.mid(start, end - start).split(u'\n')) {
        const QStringList words = QProcess::splitCommand(line.section(u'#', 0, 0));
        if (words.value(0) == u"corvantide") commands << words.mid(1);
    }
    return commands;
}

TEST_F(TerminalVerbsEndToEnd, TheReadmesRecipeLogsOnAndObeysItsUserbase) {
    ASSERT_TRUE(sandbox.start({QStringLiteral("--current-verbyte")}));
    const QList<QStringList> recipe = readmeRecipe();
    ASSERT_GE(recipe.size(), 10);
    QString shown;
    for (QStringList words : recipe) {
        // The sandbox of this test listens on ports of its own.
        words.replaceInStrings(QStringLiteral("127.0.0.1:6112"), sandbox.bncsServer());
        words.replaceInStrings(QStringLiteral("127.0.0.1:9367"), sandbox.bnlsServer());
        const VerbAnswer run = verb(words);
        ASSERT_EQ(run.status, 0) << words.join(u' ').toStdString() << ": " << run.err.toStdString();
        if (words.mid(0, 2) == QStringList{QStringLiteral("profile"), QStringLiteral("show")})
            shown = run.out;
    }
    EXPECT_TRUE(shown.contains(QStringLiteral("Verbyte =    (the current byte of STAR, D3)")));
    EXPECT_FALSE(shown.contains(QStringLiteral("Cannot connect"))) << shown.toStdString();
    // A copy with the byte of an older client, and one that lacks its account.
    setUp("profile clone Main Stale");
    setUp("profile set Stale Account stalebot");
    setUp("profile set Stale Verbyte d1");
    setUp("profile clone Main Blank");
    setUp({QStringLiteral("profile"), QStringLiteral("set"), QStringLiteral("Blank"),
           QStringLiteral("Account"), QString()});

    const QString plugins = home.filePath(QStringLiteral(".local/share/Corvantide/Plugins/"));
    ASSERT_TRUE(QDir().mkpath(plugins));
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(CORVANTIDE_TEST_DATA "/../../examples/plugins/greeter.js"),
                    plugins + QStringLiteral("greeter.js")));
    EXPECT_EQ(verb("plugin enable Greeter").out,
              QStringLiteral("'greeter' loads when the bot starts.\n"));
    const VerbAnswer noBot = verb("plugin start greeter");
    EXPECT_EQ(noBot.status, 1);
    EXPECT_TRUE(noBot.err.startsWith(QStringLiteral("No Corvantide runs on this home")))
        << noBot.err.toStdString();

    ASSERT_TRUE(bot.headless(home.path(), {QStringLiteral("--connect")}));
    owner = sandbox.loadProfile(QStringLiteral("myfriend"), QStringLiteral("Lobby"));
    SlotTable::instance().ConnectBot(owner);
    ASSERT_TRUE(waitFor([&] { return lvUsers(owner).count() == 3; }, 30000));
    ASSERT_TRUE(bot.says(QStringLiteral("Cannot connect: Account is empty")));

    Bots(owner).Queue << QStringLiteral(".say obeying the terminal's userbase");
    ASSERT_TRUE(saw(owner, QStringLiteral("<mybot> obeying the terminal's userbase")));

    // The refused byte was mended from BNLS once (Main and the user sent
    // their product's current byte); the profile without an account said
    // what it lacks and never tried.
    bot.read();
    EXPECT_EQ(bot.out.count(QStringLiteral("[BNLS] The server refused version byte D1 of STAR; "
                                           "stored the current one, D3, in the profile and "
                                           "connecting once more.")),
              1);
    EXPECT_EQ(verb("profile get Stale Verbyte").out, QStringLiteral("D3\n"));
    EXPECT_EQ(bot.out.count(QStringLiteral("[BNET] Cannot connect: Account is empty; set it with: "
                                           "corvantide profile set Blank Account NAME.")),
              1);
    EXPECT_FALSE(bot.out.contains(QStringLiteral("Reconnecting")));

    // The plug-in Plugins.ini loads at start greets who joins.
    Bots(owner).Queue << QStringLiteral("/join Elsewhere") << QStringLiteral("/join Lobby");
    ASSERT_TRUE(saw(owner, QStringLiteral("<mybot> Hello myfriend, greetings from a plug-in.")));
    struct PluginVerb {
        const char* words;
        int status;
        QString said; // on standard output, or standard error for a refusal
    } const pluginVerbs[] = {
        {"plugin list", 0, QStringLiteral("greeter\trunning, loads at start\n")},
        {"plugin stop greeter", 0, QStringLiteral("Stopped 'greeter'.\n")},
        {"plugin stop greeter", 1, QStringLiteral("'greeter' is not running.\n")},
        {"plugin disable greeter", 0,
         QStringLiteral("'greeter' no longer loads when the bot starts.\n")},
        {"plugin start greeter", 0, QStringLiteral("Started 'greeter'.\n")},
        {"plugin list", 0, QStringLiteral("greeter\trunning, not loaded at start\n")},
    };
    for (const PluginVerb& row : pluginVerbs) {
        const VerbAnswer a = verb(row.words);
        EXPECT_EQ(a.status, row.status) << row.words;
        EXPECT_EQ(row.status == 0 ? a.out : a.err, row.said) << row.words;
    }

    // The running bot takes the new trigger at once: the old one is silence.
    const VerbAnswer changed = verb("profile set Main Trigger #");
    ASSERT_EQ(changed.status, 0) << changed.err.toStdString();
    EXPECT_EQ(changed.out, QStringLiteral("Set Trigger of 'Main' to '#'.\n"));
    Bots(owner).Queue << QStringLiteral(".say old trigger") << QStringLiteral("#say new trigger");
    ASSERT_TRUE(saw(owner, QStringLiteral("<mybot> new trigger")));
    EXPECT_FALSE(rtbChat(owner).text().contains(QStringLiteral("<mybot> old trigger")));

    // Lists changed on the terminal count at once in the running bot: a
    // filter hides the owner's next line, a macro answers the next command.
    setUp("filter add *hush*");
    setUp("macro add greet Hello from a macro");
    Bots(owner).Queue << QStringLiteral("hush hush") << QStringLiteral("#macro greet");
    ASSERT_TRUE(saw(owner, QStringLiteral("<mybot> Hello from a macro")));
    EXPECT_TRUE(bot.says(QStringLiteral("#macro greet")));
    EXPECT_FALSE(bot.out.contains(QStringLiteral("hush hush")));

    // Refusals from the running bot come back with a failing status.
    const VerbAnswer taken = verb("profile new main");
    EXPECT_EQ(taken.status, 1);
    EXPECT_EQ(taken.err, QStringLiteral("A profile named 'Main' already exists.\n"));
    const VerbAnswer wrongType = verb("profile set Main IdleTime soon");
    EXPECT_EQ(wrongType.status, 1);
    EXPECT_EQ(wrongType.err, QStringLiteral("IdleTime takes a number, not 'soon'.\n"));
}
