// A bot that runs as a service, steered and followed from other terminals: a
// headless bot without input and two profiles against the sandbox; `status`,
// `load`, `connect`, `send`, `tail`, `disconnect` and `unload` while it runs,
// and a burst of lines that all reach its standard output.
#include "e2e/RunningProgram.h"

#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

class SteeringEndToEnd : public ::testing::Test, protected Terminal {
protected:
    void SetUp() override {
        ASSERT_TRUE(sandbox.start({QStringLiteral("--control")}));
        // Every talk event shows, however fast it comes; whispers go to their panel.
        const VerbAnswer imported = importKeys(
            home.path(),
            profileKey(QStringLiteral("Alpha"), QStringLiteral("alphabot"), QStringLiteral("Steer"),
                       sandbox) +
                profileKey(QStringLiteral("Beta"), QStringLiteral("betabot"),
                           QStringLiteral("Steer"), sandbox, false) +
                QStringLiteral(
                    "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
                    "\"FloodMode\"=dword:00000000\r\n\"WhisperPanel\"=dword:00000001\r\n"));
        ASSERT_EQ(imported.status, 0) << imported.err.toStdString();
    }

    void startBot() {
        ASSERT_TRUE(
            bot.headless(home.path(), {QStringLiteral("--no-input"), QStringLiteral("--connect")}));
        ASSERT_TRUE(botSays(QStringLiteral("[Alpha] "), QStringLiteral("alphabot is present")));
    }

    // Until `text` has come out of the bot on a line of the profile's `prefix`.
    bool botSays(const QString& prefix, const QString& text) {
        return waitFor(
            [&] {
                const QRegularExpression line(u'^' + QRegularExpression::escape(prefix) +
                                                  QStringLiteral(".*") +
                                                  QRegularExpression::escape(text),
                                              QRegularExpression::MultilineOption);
                return line.match(bot.read()).hasMatch();
            },
            20000);
    }
    // Until a row of `status` matches the pattern.
    bool statusShows(const QString& row) {
        const QRegularExpression pattern(u'^' + row, QRegularExpression::MultilineOption);
        return waitFor([&] { return pattern.match(verb("status").out).hasMatch(); }, 20000);
    }

    SandboxProcess sandbox;
    RunningProgram bot;
    RunningProgram tail;
};

} // namespace

TEST_F(SteeringEndToEnd, AServiceBotIsSteeredAndFollowedFromOtherTerminals) {
    startBot();
    ASSERT_TRUE(statusShows(QStringLiteral("Alpha +online +Steer +1 +\\d+ ms +-$")));

    // The second profile is loaded and connected from here.
    VerbAnswer a = verb("load beta");
    ASSERT_EQ(a.status, 0) << a.err.toStdString();
    EXPECT_TRUE(a.out.startsWith(QStringLiteral("Loaded 'Beta'"))) << a.out.toStdString();
    a = verb("load Beta");
    EXPECT_EQ(a.status, 1);
    EXPECT_EQ(a.err, QStringLiteral("Cannot load profile (Beta) it is already loaded.\n"));
    EXPECT_TRUE(statusShows(QStringLiteral("Beta +offline +- +- +- +-$")));
    ASSERT_EQ(verb("connect Beta").status, 0);
    ASSERT_TRUE(statusShows(QStringLiteral("Beta +online +Steer +2 ")));

    // A follower gets the last lines first, then each line as it comes: what
    // `send` types, and a whisper that the whisper panel takes.
    tail.verb(home.path(), {QStringLiteral("tail"), QStringLiteral("Beta"), QStringLiteral("-n"),
                            QStringLiteral("3")});
    // The account's facts end the logon: the last three lines are theirs.
    ASSERT_TRUE(tail.says(QStringLiteral("Time Logged:"))) << tail.out.toStdString();
    EXPECT_EQ(tail.out.count(u'\n'), 3) << tail.out.toStdString();
    EXPECT_TRUE(tail.out.contains(QStringLiteral("Last Logoff:")));
    a = verb("send Beta hello from afar");
    ASSERT_EQ(a.status, 0) << a.err.toStdString();
    EXPECT_TRUE(tail.says(QStringLiteral("<betabot> hello from afar")));
    a = verb("send Beta /ver");
    EXPECT_TRUE(a.out.contains(QStringLiteral("Corvantide v"))) << a.out.toStdString();
    ASSERT_EQ(sandbox.control({QStringLiteral("user Ghost"),
                               QStringLiteral("whisper Ghost betabot psst, beta")}),
              QStringList({QStringLiteral("ok"), QStringLiteral("ok")}));
    EXPECT_TRUE(tail.says(QStringLiteral("<From: Ghost> psst, beta")));
    EXPECT_TRUE(botSays(QStringLiteral("[Beta] "), QStringLiteral("<From: Ghost> psst, beta")));
    EXPECT_FALSE(tail.out.contains(QStringLiteral("[Alpha]")));

    // Disconnected and unloaded from here; the follower is told, and a line
    // for a profile no longer loaded is refused.
    ASSERT_EQ(verb("disconnect Beta").status, 0);
    EXPECT_TRUE(tail.says(QStringLiteral("[Connections Closed]")));
    EXPECT_TRUE(statusShows(QStringLiteral("Beta +offline +- ")));
    ASSERT_EQ(verb("unload Beta").status, 0);
    EXPECT_TRUE(tail.says(QStringLiteral("-- 'Beta' was unloaded")));
    a = verb("send Beta hi");
    EXPECT_EQ(a.status, 1);
    EXPECT_TRUE(a.err.startsWith(QStringLiteral("No profile named 'Beta' is loaded")));
    EXPECT_FALSE(verb("status").out.contains(QStringLiteral("Beta")));

    // Loaded again, the follower picks it up by name.
    ASSERT_EQ(verb("load Beta").status, 0);
    ASSERT_EQ(verb("reconnect Beta").status, 0);
    EXPECT_TRUE(tail.says(QStringLiteral("-- 'Beta' was loaded.")));
    EXPECT_TRUE(tail.says(QStringLiteral("Joined Private channel:")));

    // A loaded profile deleted from the store leaves its slot, and loading
    // goes on working.
    setUp("profile clone Beta Gamma");
    setUp("profile delete Beta");
    EXPECT_TRUE(
        waitFor([&] { return tail.read().count(QStringLiteral("-- 'Beta' was unloaded")) == 2; }));
    a = verb("load Gamma");
    EXPECT_EQ(a.status, 0) << a.err.toStdString();
    EXPECT_TRUE(statusShows(QStringLiteral("Gamma +offline")));

    // The bot going away ends the follower.
    bot.terminate();
    ASSERT_TRUE(bot.waitForFinished(20000));
    ASSERT_TRUE(tail.waitForFinished(20000));
    EXPECT_TRUE(tail.readAllStandardError().contains("The bot stopped"));

    // Without a running bot the steering verbs say so.
    a = verb("status");
    EXPECT_EQ(a.status, 1);
    EXPECT_TRUE(a.err.startsWith(QStringLiteral("No Corvantide runs on this home")))
        << a.err.toStdString();
}

// Ten thousand talk events in one burst: each is a line on the bot's standard
// output (a pipe, as under a service manager), in order, though the chat view
// is emptied many times meanwhile. A follower reading at the same time sees
// each line or has it counted as skipped.
TEST_F(SteeringEndToEnd, EveryLineOfABurstReachesStandardOutputInOrder) {
    startBot();
    ASSERT_EQ(sandbox.control(QStringLiteral("join Ghost Steer")), QStringLiteral("ok"));
    ASSERT_TRUE(botSays(QStringLiteral("[Alpha] "), QStringLiteral("Ghost has joined")));
    // The follower is in place once the last line before it has reached it.
    tail.verb(home.path(), {QStringLiteral("tail"), QStringLiteral("Alpha"), QStringLiteral("-n"),
                            QStringLiteral("1")});
    ASSERT_TRUE(tail.says(QStringLiteral("Ghost has joined")));

    constexpr int kLines = 10000;
    QStringList burst;
    for (int i = 1; i <= kLines; ++i)
        burst << QStringLiteral("talk Ghost burst line %1").arg(i);
    ASSERT_EQ(sandbox.control(burst, 60000).size(), kLines);
    ASSERT_TRUE(botSays(QStringLiteral("[Alpha] "), QStringLiteral("burst line %1").arg(kLines)));
    const QRegularExpression talk(QStringLiteral("^\\[Alpha\\] .*<Ghost> burst line (\\d+)$"),
                                  QRegularExpression::MultilineOption);
    int expected = 1;
    for (auto it = talk.globalMatch(bot.out); it.hasNext();) {
        ASSERT_EQ(it.next().captured(1).toInt(), expected) << "a line missing or out of order";
        ++expected;
    }
    EXPECT_EQ(expected - 1, kLines);

    // Shown plus skipped: every line of the burst, whatever the follower's pace.
    const QRegularExpression shown(QStringLiteral("<Ghost> burst line \\d+$"),
                                   QRegularExpression::MultilineOption);
    const QRegularExpression skipped(QStringLiteral("^\\.\\.\\. (\\d+) lines skipped$"),
                                     QRegularExpression::MultilineOption);
    int accounted = 0;
    ASSERT_TRUE(waitFor(
        [&] {
            tail.read();
            accounted = 0;
            for (auto it = shown.globalMatch(tail.out); it.hasNext(); it.next())
                ++accounted;
            for (auto it = skipped.globalMatch(tail.out); it.hasNext();)
                accounted += it.next().captured(1).toInt();
            return accounted >= kLines;
        },
        30000))
        << accounted;
    EXPECT_EQ(accounted, kLines);
}
