// The chat engine against the sandbox and its residents: the user list stays
// the channel's through everything the channel does, whispers go both ways, a
// spammer's burst vanishes unseen, profanity is censored where it shows, and
// the idle message keeps its minute on the bot's own clock.
#include "commands/ProfanityReader.h"
#include "e2e/BotFixture.h"
#include "platform/ListModel.h"
#include "platform/TickCount.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <map>

namespace {

class ChatEndToEnd : public BotFixture {
protected:
    void SetUp() override {
        BotFixture::SetUp();
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setFloodMode(1000); // every event takes the delayed road
        settings.setWhisperPanel(false);
    }

    bool startSandbox(QStringList options) {
        return sandbox.start(traced(options << QStringLiteral("--control")));
    }

    // The bot's users as "name:flags", in their order of arrival.
    static QStringList botUsers(int i) {
        QStringList out;
        for (const UserElement& u : Bots(i).Users)
            out << u.UsernameFixed.toLower() + u':' + QString::number(u.Flags);
        return out;
    }
    // The same of the sandbox's channel.
    QStringList members(const QString& channel) {
        return sandbox.control(QStringLiteral("members ") + channel).toLower().split(u' ').mid(2);
    }
    // The bot is in the channel and has caught up with it; nobody but the bot
    // moves meanwhile.
    ::testing::AssertionResult followsChannel(int i, const QString& channel, bool inOrder = true) {
        if (!waitFor([&] { return Bots(i).Channel() == channel; }, 15000))
            return ::testing::AssertionFailure() << "bot in " << Bots(i).Channel().toStdString()
                                                 << ", not in " << channel.toStdString();
        QStringList expected = members(channel);
        if (!inOrder) expected.sort();
        QStringList seen;
        const bool caughtUp = waitFor(
            [&] {
                seen = botUsers(i);
                if (!inOrder) seen.sort();
                return Bots(i).Channel() == channel && seen == expected &&
                       Bots(i).DelayCount() == 0;
            },
            15000);
        if (!caughtUp)
            return ::testing::AssertionFailure()
                   << "bot in " << Bots(i).Channel().toStdString() << ":\n  "
                   << seen.join(u' ').toStdString() << "\nsandbox's " << channel.toStdString()
                   << ":\n  " << expected.join(u' ').toStdString();
        return listViewAgrees(i);
    }
    // The list on screen holds the same users, operators and representatives first.
    static ::testing::AssertionResult listViewAgrees(int i) {
        const ListModel& list = lvUsers(i);
        BotElement& bot = Bots(i);
        if (size_t(list.count()) != bot.Users.size())
            return ::testing::AssertionFailure()
                   << list.count() << " items for " << bot.Users.size() << " users";
        bool othersBegun = false;
        for (int n = 1; n <= list.count(); ++n) {
            const int position = bot.UserFind(list.item(n).tag);
            if (position == 0)
                return ::testing::AssertionFailure()
                       << "item of " << list.item(n).tag.toStdString() << " without a user";
            const bool top = bot.user(position).Flags & 0x03;
            if (top && othersBegun)
                return ::testing::AssertionFailure()
                       << list.item(n).tag.toStdString() << " is below ordinary users";
            othersBegun = othersBegun || !top;
        }
        return ::testing::AssertionSuccess();
    }
    // How many chat events of each id the sandbox sent.
    std::map<quint32, int> eventsSent() const {
        std::map<quint32, int> count;
        for (const TracedFrame& t : readTrace(tracePath()))
            if (t.link == "bncs" && t.direction == "out" && t.id == "0x0f") ++count[t.dword(0)];
        return count;
    }
};

} // namespace

TEST_F(ChatEndToEnd, TheUserListIsTheChannelThroughJoinsLeavesFlagsAndAChannelChange) {
    ASSERT_TRUE(startSandbox({QStringLiteral("--residents"), QStringLiteral("30"),
                              QStringLiteral("--resident-rate"), QStringLiteral("8"),
                              QStringLiteral("--seed"), QStringLiteral("11")}));
    const int i = inChannel(QStringLiteral("watcher"), QStringLiteral("Sandbox"));

    // The residents come and go, talk and hand the operator's flag on, while
    // a visitor of our own arrives, is made operator, loses it and leaves.
    const QStringList steps[] = {
        {"user Visitor SEXP 0 90", "join Visitor Sandbox"},
        {"flags Visitor 2"},
        {"flags Visitor 16"},
        {"user Drifter W2BN", "join Drifter Sandbox", "leave Visitor"},
    };
    for (const QStringList& step : steps) {
        pause(2000);
        control(step);
    }
    pause(2000);
    control({"residents pause"});
    EXPECT_TRUE(followsChannel(i, QStringLiteral("Sandbox")));
    // The residents did come and go meanwhile.
    std::map<quint32, int> sent = eventsSent();
    EXPECT_GT(sent[2], 3);
    EXPECT_GT(sent[3], 3);
    EXPECT_GT(sent[5], 10);
    EXPECT_TRUE(chat(i).contains(QStringLiteral("Visitor gained channel operator status.")));
    EXPECT_TRUE(chat(i).contains(QStringLiteral("Visitor lost channel operator status.")));

    // Another channel, where the list starts anew and flags change too.
    control({"user Keeper W3XP 0 80", "join Keeper Backroom", "user Lurker D2DV",
             "join Lurker Backroom"});
    Bots(i).Queue << QStringLiteral("/join Backroom");
    EXPECT_TRUE(followsChannel(i, QStringLiteral("Backroom")));
    control({"flags Lurker 4", "join Drifter Backroom"});
    EXPECT_TRUE(followsChannel(i, QStringLiteral("Backroom")));

    // Back among the residents, who went on without us.
    control({"residents resume"});
    pause(3000);
    Bots(i).Queue << QStringLiteral("/join Sandbox");
    ASSERT_TRUE(waitFor([&] { return Bots(i).Channel() == QLatin1String("Sandbox"); }));
    pause(3000);
    control({"residents pause"});
    EXPECT_TRUE(followsChannel(i, QStringLiteral("Sandbox")));
    EXPECT_TRUE(Bots(i).Online());
}

// In a channel standing still: whispers go both ways, a spammer's
// leave-rejoin-talk burst vanishes unseen, and profanity is censored or
// uncensored where it shows only.
TEST_F(ChatEndToEnd, WhispersASpammersBurstAndProfanityInAQuietChannel) {
    ASSERT_TRUE(startSandbox({QStringLiteral("--residents"), QStringLiteral("6"),
                              QStringLiteral("--seed"), QStringLiteral("5")}));
    control({"residents pause", "user Spammer", "join Spammer Sandbox"});
    const int i = inChannel(QStringLiteral("guard"), QStringLiteral("Sandbox"));
    ASSERT_TRUE(followsChannel(i, QStringLiteral("Sandbox")));
    const QString resident = members(QStringLiteral("Sandbox")).first().section(u':', 0, 0);

    control({QStringLiteral("whisper %1 guard are you a bot?").arg(resident)});
    ASSERT_TRUE(saw(i, QStringLiteral("are you a bot?")));
    EXPECT_EQ(Bots(i).LastWhisper.toLower(), resident);
    // The resident answers what reached it, quoting it.
    Bots(i).Queue << QStringLiteral("/w %1 only on weekdays").arg(resident);
    EXPECT_TRUE(saw(i, QStringLiteral("you said \"only on weekdays\"?")));
    EXPECT_EQ(Bots(i).LastWhispered.toLower(), resident);
    EXPECT_EQ(Bots(i).LastWhisper.toLower(), resident);

    control({"leave Spammer", "join Spammer Sandbox", "talk Spammer buy gold at example dot com"});
    ASSERT_TRUE(waitFor([&] { return Bots(i).DelayCount() > 0; }));
    ASSERT_TRUE(waitFor([&] { return Bots(i).DelayCount() == 0; }));
    // What comes after the burst is shown as usual.
    control({"talk Spammer sorry about that"});
    ASSERT_TRUE(saw(i, QStringLiteral("sorry about that")));
    EXPECT_FALSE(chat(i).contains(QStringLiteral("buy gold")));
    // Neither the leave nor the rejoin was seen: the spammer is still listed
    // once, in the place of the first arrival, ahead of the bot.
    EXPECT_FALSE(chat(i).contains(QStringLiteral("Spammer has left the channel.")));
    EXPECT_TRUE(followsChannel(i, QStringLiteral("Sandbox"), false));
    EXPECT_LT(Bots(i).UserFind(QStringLiteral("Spammer")),
              Bots(i).UserFind(QStringLiteral("guard")));

    const auto table = [](const QByteArray& pairs) {
        QFile file(ProfanityReader::file());
        return file.open(QIODevice::WriteOnly) && file.write("[Main]\r\n" + pairs) > 0;
    };
    ASSERT_TRUE(table("d**n=damn\r\n"));
    SettingsWrapper& settings = SettingsWrapper::instance();
    settings.setFloodMode(0); // one user's lines close together are all shown
    settings.setRemoveProfanity(true);
    settings.setImproveProfanity(false);

    // Censored as shown, both ways; the server gets what was said.
    control({"talk Spammer damn this wind"});
    Bots(i).Queue << QStringLiteral("damn the torpedoes");
    ASSERT_TRUE(waitFor([&] {
        return chat(i).contains(QStringLiteral("d**n the torpedoes")) &&
               chat(i).contains(QStringLiteral("d**n this wind"));
    })) << chat(i).toStdString();
    EXPECT_TRUE(serverHears(QStringLiteral("damn the torpedoes")));

    // A changed table counts from the next line.
    ASSERT_TRUE(table("d**n=damn\r\nh*ck=heck\r\n"));
    control({"talk Spammer heck of a day"});
    ASSERT_TRUE(saw(i, QStringLiteral("h*ck of a day")));

    // Uncensoring turns the table's words back into the plain ones.
    settings.setRemoveProfanity(false);
    settings.setImproveProfanity(true);
    control({"talk Spammer what the h*ck"});
    EXPECT_TRUE(saw(i, QStringLiteral("what the heck")));
    EXPECT_FALSE(chat(i).contains(QStringLiteral("damn")));
    settings.setRemoveProfanity(true);
    settings.setImproveProfanity(false);
}

TEST_F(ChatEndToEnd, TheIdleMessageGoesOutOnTheMinuteOfTheBotsClock) {
    TimedEvents::instance().stop();
    tickcount::ManualClock clock(5000000);
    TimedEvents::instance().start();
    const quint32 start = clock.now();
    // Time passes for the bot only when the test moves its clock.
    const auto driveTo = [&](quint32 at) {
        while (clock.now() - start < at) {
            clock.advance(std::min<quint32>(50, at - (clock.now() - start)));
            TimedEvents::instance().pulse();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    };
    // The same, at ten times the pace of real time, for what needs the network.
    const auto driveUntil = [&](const std::function<bool()>& done) {
        for (int n = 0; n < 2000 && !done(); ++n) {
            driveTo(clock.now() - start + 50);
            pause(5);
        }
        return done();
    };

    ASSERT_TRUE(startSandbox({}));
    const int i = sandbox.loadProfile(QStringLiteral("idler"), QStringLiteral("Lobby"));
    Bots(i).Config.setIdleTime(2);
    Bots(i).Config.setIdleMsg(QStringLiteral("idle in $ch"));
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(driveUntil([&] { return Bots(i).Channel() == QLatin1String("Lobby"); }))
        << chat(i).toStdString();

    // Chat in the channel doesn't move the idle time: it is a fixed period. A
    // newcomer's words are shown once the flood delay since the arrival is over.
    control({"user Chatter", "join Chatter Lobby"});
    ASSERT_TRUE(driveUntil([&] { return Bots(i).UserFind(QStringLiteral("Chatter")) > 0; }));
    driveTo(clock.now() - start + 1500);
    control({"talk Chatter anyone here?"});
    ASSERT_TRUE(driveUntil([&] { return chat(i).contains(QStringLiteral("anyone here?")); }));
    ASSERT_LT(clock.now() - start, 60000u);

    driveTo(119950);
    EXPECT_TRUE(Bots(i).Queue.isEmpty());
    EXPECT_EQ(Bots(i).IdleCounter, 1);
    driveTo(120000);
    EXPECT_EQ(Bots(i).Queue, QStringList{QStringLiteral("idle in Lobby")});
    driveTo(120100);
    EXPECT_TRUE(Bots(i).Queue.isEmpty());
    EXPECT_TRUE(serverHears(QStringLiteral("idle in Lobby")));
    EXPECT_EQ(linesAtServer().count(QStringLiteral("idle in Lobby")), 1);
}
