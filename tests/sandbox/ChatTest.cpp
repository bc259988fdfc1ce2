#include "SandboxHarness.h"
#include "sandbox/ControlChannel.h"
#include "sandbox/EventScript.h"
#include "sandbox/ResidentCrowd.h"

#include <QElapsedTimer>
#include <QTest>
#include <gtest/gtest.h>

using namespace sandboxtest;

namespace {

bool is(const std::optional<Event>& e, quint32 id, const QString& name, const QString& text) {
    return e && e->id == id && e->name == name && e->text == text;
}

auto eventOf(quint32 id, const QString& name) {
    return [=](const Event& e) { return e.id == id && e.name == name; };
}

auto textOf(quint32 id, const QString& text) {
    return [=](const Event& e) { return e.id == id && e.text == text; };
}

sandbox::SandboxOptions withoutFloodLimit() {
    sandbox::SandboxOptions o;
    o.flood.enabled = false;
    return o;
}

// Two clients in one channel; anna made it, so she holds the operator's flag. The tests send
// command after command, faster than the flood budget allows.
class TwoInARoom : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(logOn(server.bnlsPort(), anna, "STAR", "anna", "pw"), "anna");
        ASSERT_EQ(logOn(server.bnlsPort(), bert, "SEXP", "bert", "pw"), "bert");
        anna.join("Room");
        ASSERT_TRUE(anna.nextEvent(eventOf(1, "anna")));
        bert.join("Room");
        ASSERT_TRUE(anna.nextEvent(eventOf(2, "bert")));
        ASSERT_TRUE(bert.nextEvent(eventOf(1, "bert")));
    }
    Server server{withoutFloodLimit()};
    Client anna{server.bncsPort()};
    Client bert{server.bncsPort()};
};

} // namespace

TEST_F(TwoInARoom, JoiningShowsTheChannelAndItsPeople) {
    Client carl(server.bncsPort());
    ASSERT_EQ(logOn(server.bnlsPort(), carl, "W2BN", "carl", "pw"), "carl");
    carl.join("room");
    EXPECT_TRUE(is(carl.nextEvent(7), 7, "carl", "Room")) << "the channel keeps its spelling";
    const auto first = carl.nextEvent(1);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->name, "anna");
    EXPECT_EQ(first->flags, 0x02u) << "whoever made the channel operates it";
    EXPECT_EQ(first->text, "RATS 0 0 0 0 0 0 0 0 RATS");
    EXPECT_EQ(carl.nextEvent(1)->name, "bert");
    EXPECT_EQ(carl.nextEvent(1)->name, "carl");
    const auto joined = bert.nextEvent(2);
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->text, "NB2W 0 0 0 0 0 0 0 0 NB2W");
}

TEST_F(TwoInARoom, TalkWhispersAndEmotesReachTheRightPeople) {
    anna.say("hello room");
    EXPECT_TRUE(is(bert.nextEvent(5), 5, "anna", "hello room"));
    // (The short /w both ways is the end-to-end chat test's.)
    anna.say("/whisper bert back at you");
    EXPECT_TRUE(is(anna.nextEvent(10), 10, "bert", "back at you"));
    EXPECT_TRUE(is(bert.nextEvent(4), 4, "anna", "back at you"));
    anna.say("/me waves");
    EXPECT_TRUE(is(anna.nextEvent(23), 23, "anna", "waves"));
    EXPECT_TRUE(is(bert.nextEvent(23), 23, "anna", "waves"));
    EXPECT_TRUE(anna.noneOf(5)) << "a speaker is not sent their own talk";
    bert.say("/w nobody hi");
    EXPECT_TRUE(bert.nextEvent(textOf(19, "That user is not logged on.")));
    bert.say("/join Elsewhere");
    EXPECT_TRUE(anna.nextEvent(eventOf(3, "bert")));
}

TEST_F(TwoInARoom, OperatorsKickBanAndHandOver) {
    bert.say("/kick anna");
    EXPECT_TRUE(bert.nextEvent(textOf(19, "You are not a channel operator.")));
    anna.say("/kick bert too loud");
    EXPECT_TRUE(bert.nextEvent(textOf(18, "anna kicked you out of the channel!")));
    EXPECT_TRUE(bert.nextEvent(textOf(7, "The Void")));
    EXPECT_TRUE(
        anna.nextEvent(textOf(18, "bert was kicked out of the channel by anna (too loud).")));

    bert.join("Room");
    ASSERT_TRUE(anna.nextEvent(eventOf(2, "bert")));
    anna.say("/ban bert");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert was banned by anna.")));
    EXPECT_TRUE(bert.nextEvent(textOf(7, "The Void")));
    bert.join("Room");
    EXPECT_TRUE(bert.nextEvent(textOf(19, "You are banned from that channel.")));
    EXPECT_EQ(server.context().store.channelBans("ROOM"), QStringList{"bert"});
    anna.say("/unban bert");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert was unbanned by anna.")));
    bert.join("Room");
    ASSERT_TRUE(anna.nextEvent(eventOf(2, "bert")));

    anna.say("/designate bert");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert is your new designated heir.")));
    anna.say("/join Other");
    const auto promoted = bert.nextEvent(eventOf(9, "bert"));
    ASSERT_TRUE(promoted);
    EXPECT_EQ(promoted->flags & 0x02, 0x02u);
}

TEST_F(TwoInARoom, AwayDoNotDisturbAndIgnore) {
    bert.say("/away lunch");
    EXPECT_TRUE(bert.nextEvent(textOf(18, "You are now marked as being away.")));
    anna.say("/w bert hi");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert is away (lunch)")));
    EXPECT_TRUE(bert.nextEvent(4));
    bert.say("/dnd busy");
    EXPECT_TRUE(bert.nextEvent(textOf(18, "Do Not Disturb mode engaged.")));
    anna.say("/w bert hi again");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert is unavailable (busy)")));
    EXPECT_TRUE(bert.noneOf(4)) << "do not disturb holds whispers back";

    anna.say("/ignore bert");
    const auto squelched = anna.nextEvent(eventOf(9, "bert"));
    ASSERT_TRUE(squelched);
    EXPECT_EQ(squelched->flags & 0x20, 0x20u);
    bert.say("can you hear me");
    EXPECT_TRUE(anna.noneOf(5)) << "an ignored user's talk stays away";
    anna.say("/unignore bert");
    EXPECT_EQ(anna.nextEvent(eventOf(9, "bert"))->flags & 0x20, 0u);
}

TEST_F(TwoInARoom, ChannelRulesAndServerTexts) {
    anna.join("Brood War USA-1");
    EXPECT_TRUE(anna.nextEvent(textOf(15, "Brood War USA-1"))) << "another product's channel";
    bert.join("Brood War USA-1", 0);
    EXPECT_TRUE(bert.nextEvent(textOf(7, "Brood War USA-1")));
    anna.join("No Such Place", 0);
    EXPECT_TRUE(anna.nextEvent(textOf(14, "No Such Place")));
    anna.say("/frobnicate");
    EXPECT_TRUE(
        anna.nextEvent(textOf(19, "That is not a valid command. Type /help or /? for more info.")));
    anna.say("/whoami");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "You are anna, using Starcraft in channel Room.")));
    anna.say("/whois bert");
    EXPECT_TRUE(
        anna.nextEvent(textOf(18, "bert is using Starcraft Broodwar in channel Brood War USA-1.")));
    anna.say("/who Brood War USA-1");
    EXPECT_TRUE(anna.nextEvent(textOf(18, "Users in channel Brood War USA-1:")));
    EXPECT_TRUE(anna.nextEvent(textOf(18, "bert")));
}

TEST(SandboxChat, NamesAreUniqueAndDiabloSeesStarForms) {
    sandbox::SandboxOptions o;
    o.channelLimit = 2;
    Server server(o);
    Client a(server.bncsPort()), twin(server.bncsPort()), dee(server.bncsPort());
    ASSERT_EQ(logOn(server.bnlsPort(), a, "STAR", "anna", "pw"), "anna");
    EXPECT_EQ(logOn(server.bnlsPort(), twin, "STAR", "anna", "pw"), "anna#2");
    ASSERT_EQ(logOn(server.bnlsPort(), dee, "D2DV", "dee", "pw"), "dee");
    a.join("Hall");
    dee.join("Hall");
    EXPECT_TRUE(dee.nextEvent(eventOf(1, "*anna")));
    EXPECT_TRUE(is(a.nextEvent(2), 2, "dee", "VD2D")) << "Diablo II without a character";
    twin.join("Hall");
    EXPECT_TRUE(twin.nextEvent(textOf(13, "Hall"))) << "the channel holds two";
    dee.say("/w *anna from the realm");
    EXPECT_TRUE(is(a.nextEvent(4), 4, "dee", "from the realm"));
    EXPECT_TRUE(is(dee.nextEvent(10), 10, "*anna", "from the realm"));
}

TEST(SandboxChat, FloodingCostsTheConnection) {
    Server server;
    Client calm(server.bncsPort()), noisy(server.bncsPort());
    ASSERT_FALSE(logOn(server.bnlsPort(), calm, "STAR", "calm", "pw").isEmpty());
    ASSERT_FALSE(logOn(server.bnlsPort(), noisy, "STAR", "noisy", "pw").isEmpty());
    calm.join("Room");
    noisy.join("Room");
    for (int i = 0; i < 3; ++i)
        calm.say("hi");
    calm.sync();
    EXPECT_FALSE(calm.next(0x13, 0)) << "four short lines at once (with the /whoami) are allowed";
    for (int i = 0; i < 6; ++i)
        noisy.say("spam spam spam");
    EXPECT_TRUE(noisy.next(0x13));
    EXPECT_TRUE(noisy.closed());
    EXPECT_TRUE(calm.nextEvent(eventOf(3, "noisy")));
}

TEST(SandboxChat, PingIsMeasuredFromTheVersionCheck) {
    Server server;
    const auto pingOf = [&](const char* account, int mode) {
        Client c(server.bncsPort());
        const auto answer = askBnls(server.bnlsPort(), "STAR", c.identify("STAR"));
        if (mode == 1) // sent before the server asked
            c.send(0x25, QByteArray(4, '\0'));
        c.authCheck({kStarKey}, answer.version, answer.checksum);
        if (mode == 2 && c.next(0x25)) c.send(0x25, QByteArray(4, '\0'));
        if (c.oldLogon(account, "pw") == 1) {
            c.oldCreate(account, "pw");
            c.oldLogon(account, "pw");
        }
        c.enterChat();
        c.join("Pings");
        const auto self = c.nextEvent(eventOf(1, account));
        return self ? qint64(qint32(self->ping)) : -100;
    };
    EXPECT_EQ(pingOf("silent", 0), -1);
    EXPECT_EQ(pingOf("early", 1), 0);
    EXPECT_GE(pingOf("answers", 2), 1);
}

TEST(SandboxChat, ScriptPlaysServerEvents) {
    Server server;
    sandbox::EventScript script(server.context().hub);
    QString error;
    EXPECT_FALSE(script.load("wait soon", error));
    EXPECT_EQ(error, "line 1: wait takes milliseconds");
    EXPECT_FALSE(script.load("# intro\n\nfrobnicate x", error));
    EXPECT_EQ(error, "line 3: unknown command frobnicate");
    EXPECT_FALSE(script.load("frame anna 0x00 0z", error));
    EXPECT_EQ(error, "line 1: frame TARGET ID HEX");
    ASSERT_TRUE(script.load("waitfor channel \"The Lobby\" anna\n"
                            "user Ghost W3XP 0 120\n"
                            "join Ghost The Lobby\n"
                            "info * server notice\n"
                            "frame anna 0x00\n"
                            "frame anna 0x4c 6e 65 77 00\n"
                            "wait 10\n"
                            "event anna 6 0 0 - global notice\n"
                            "leave Ghost\n",
                            error))
        << error.toStdString();
    script.play();
    Client anna(server.bncsPort());
    ASSERT_EQ(logOn(server.bnlsPort(), anna, "STAR", "anna", "pw"), "anna");
    anna.join("The Lobby");
    const auto ghost = anna.nextEvent(eventOf(2, "Ghost"));
    ASSERT_TRUE(ghost);
    EXPECT_EQ(ghost->text, "PX3W 1R3W 0");
    EXPECT_EQ(ghost->ping, 120u);
    EXPECT_TRUE(anna.nextEvent(textOf(18, "server notice")));
    EXPECT_TRUE(anna.next(0x00));
    EXPECT_EQ(anna.next(0x4C)->payload, QByteArray("new", 4));
    EXPECT_TRUE(anna.nextEvent(textOf(6, "global notice")));
    EXPECT_TRUE(anna.nextEvent(eventOf(3, "Ghost")));
    EXPECT_TRUE(script.finished());
}

TEST(SandboxChat, ControlLinesRefuseMistakesAndPauseTheResidents) {
    Server server;
    sandbox::ChatHub& hub = server.context().hub;
    sandbox::EventScript script(hub);
    sandbox::ResidentCrowd crowd(hub, 3, 1000, "Sandbox", 5);
    sandbox::ControlChannel control(hub, script, crowd);
    // Lines are taken however spaced, and a channel by any case of its name.
    EXPECT_EQ(control.answer("user Ghost W3XP"), "ok");
    EXPECT_EQ(control.answer("join Ghost Room"), "ok");
    EXPECT_EQ(control.answer("  members   room "), "members 1 Ghost:2");
    EXPECT_EQ(control.answer("members Nowhere"), "members 0");

    // Mistakes are answered, never carried out halfway.
    EXPECT_EQ(control.answer("talk Nobody hello"), "error: Nobody is not in chat");
    EXPECT_EQ(control.answer("wait 10"), "error: wait belongs in a script");
    EXPECT_EQ(control.answer("flags anna lots"), "error: flags NAME FLAGS");
    EXPECT_EQ(control.answer("frobnicate"), "error: unknown command frobnicate");
    EXPECT_EQ(control.answer("members"), "error: members CHANNEL");
    EXPECT_EQ(control.answer("residents nap"), "error: residents pause or residents resume");

    // A paused crowd does nothing of its own accord, and makes nothing up when it resumes.
    crowd.start();
    EXPECT_EQ(control.answer("members Sandbox").section(' ', 0, 1), "members 3");
    EXPECT_EQ(control.answer("residents pause"), "ok");
    const quint64 before = crowd.actions();
    QTest::qWait(100);
    EXPECT_EQ(crowd.actions(), before);
    QElapsedTimer sinceResume;
    sinceResume.start();
    EXPECT_EQ(control.answer("residents resume"), "ok");
    QTest::qWait(50);
    const quint64 done = crowd.actions() - before;
    EXPECT_GT(done, 0u);
    EXPECT_LE(done, quint64(sinceResume.elapsed()) + 5); // what came due since, at one a ms
}
