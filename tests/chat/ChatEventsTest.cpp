#include "chat/TimedEvents.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BotMail.h"
#include "common/ChatFixture.h"
#include "config/FileStamp.h"
#include "platform/ListModel.h"
#include "platform/LocalClock.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/UserColors.h"
#include "shell/DesktopShell.h"

#include <QDateTime>
#include <QSignalSpy>
#include <cstdlib>
#include <tuple>

namespace {

// Chat events as the server sends them, into a slot online in chat: what the
// list, the view and the queue make of them, what they flash or show in the
// tray, and what the chat path remembers between them.
class ChatEventsTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper& s = SettingsWrapper::instance();
        s.setFloodMode(0);
        for (auto set :
             {&SettingsWrapper::setFlash, &SettingsWrapper::setFlashTalk,
              &SettingsWrapper::setFlashEmote, &SettingsWrapper::setFlashWhisper,
              &SettingsWrapper::setFlashBan, &SettingsWrapper::setFlashFriendOn,
              &SettingsWrapper::setFlashFriendOff, &SettingsWrapper::setBalloon,
              &SettingsWrapper::setBalloonTalk, &SettingsWrapper::setBalloonEmote,
              &SettingsWrapper::setBalloonWhisper, &SettingsWrapper::setBalloonBan,
              &SettingsWrapper::setBalloonFriendOn, &SettingsWrapper::setBalloonFriendOff})
            (s.*set)(false);
        DesktopShell::instance().setWindowInTray(false);
        QDir(GetProgramFolder() + QStringLiteral("/Mail")).removeRecursively();
        slot = loadConnected(QStringLiteral("Watcher"));
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = QStringLiteral("Me");
    }
    void TearDown() override { DesktopShell::instance().setWindowInTray(false); }

    void event(quint32 id, const QString& user, const QString& text = {}, quint32 flags = 0,
               quint32 ping = 20) {
        wsBNET(slot).simulateData(chatEventFrame(id, flags, ping, user, text));
    }
    // Frames that arrive in one read from the socket.
    void read(const QList<QByteArray>& frames) {
        QByteArray bytes;
        for (const QByteArray& frame : frames)
            bytes += frame;
        wsBNET(slot).simulateData(bytes);
    }
    QByteArray talk(const QString& text) {
        return chatEventFrame(5, 0, 20, QStringLiteral("bob"), text);
    }
    // The bot, named Keeper, in the channel Hall with bob.
    void inHallWithBob() {
        Bots(slot).UniqueAccount = QStringLiteral("Keeper");
        Bots(slot).Config.setAccount(QStringLiteral("Keeper"));
        read({chatEventFrame(7, 0, 0, {}, QStringLiteral("Hall")),
              chatEventFrame(1, 0, 20, QStringLiteral("bob"), QStringLiteral("RATS 0"))});
    }
    QStringList listNames() {
        QStringList names;
        for (int i = 1; i <= lvUsers(slot).count(); ++i)
            names << lvUsers(slot).item(i).tag;
        return names;
    }
    QString chat() { return rtbChat(slot).text(); }
    QString lastLine() { return chat().trimmed().section(u'\n', -1); }

    QSignalSpy flashes{&DesktopShell::instance(), &DesktopShell::flashRequested};
    QSignalSpy balloons{&DesktopShell::instance(), &DesktopShell::balloonRequested};
    int slot = 0;
};

} // namespace

// (Joins, leaves, the operators' lines, a new channel's list, whispers both
// ways and a spammer's leave, rejoin and talk are the end-to-end chat test's;
// the order of operators the user list test's.)
TEST_F(ChatEventsTest, GainingOperatorMovesToTheTopAndLosingItOnlyRecolours) {
    event(1, QStringLiteral("alice"), QStringLiteral("RATS 0"));
    event(2, QStringLiteral("op"), QStringLiteral("RATS 0"), 0x02);
    event(2, QStringLiteral("bob"), QStringLiteral("PX3W 0"));
    event(9, QStringLiteral("bob"), QStringLiteral("PX3W 0"), 0x02);
    EXPECT_EQ(listNames(), (QStringList{"bob", "op", "alice"}));
    event(9, QStringLiteral("bob"), QStringLiteral("PX3W 0"), 0x00);
    EXPECT_EQ(listNames(), (QStringList{"bob", "op", "alice"}));
}

TEST_F(ChatEventsTest, AFlagsUpdateOfAStrangerAddsThem) {
    event(9, QStringLiteral("ghost"), QStringLiteral("RATS 0"), 0x10);
    EXPECT_EQ(listNames(), QStringList{"ghost"});
    EXPECT_FALSE(chat().contains(QStringLiteral("operator status")));
}

TEST_F(ChatEventsTest, ServerInformationIsReadByPattern) {
    SettingsWrapper::instance().setHideOfflineFriends(true);
    SettingsWrapper::instance().setHideBanUnban(true);
    event(18, {}, QStringLiteral("12: Someone, offline"));
    event(18, {}, QStringLiteral("Someone was banned by Other"));
    EXPECT_TRUE(chat().isEmpty());
    event(18, {}, QStringLiteral("123: Someone, offline"));
    EXPECT_TRUE(chat().contains(QStringLiteral("[BNET] 123: Someone, offline")));

    Bots(slot).setChannel(QStringLiteral("Home"));
    Bots(slot).Queue << QStringLiteral("waiting line");
    event(18, {}, QStringLiteral("Op kicked you out of the channel!"));
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/join Home")});
    EXPECT_LT(chat().indexOf(QStringLiteral("Cleared the queue.")),
              chat().indexOf(QStringLiteral("[BNET] Attempting to rejoin...")));
}

TEST_F(ChatEventsTest, JoiningTheVoidAsksToSeeUsersUnlessHidden) {
    SettingsWrapper::instance().setVoidView(false);
    Bots(slot).Config.setClient(QStringLiteral("D2DV"));
    event(7, {}, QStringLiteral("The Void"));
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/unsquelch *Me")});
    SettingsWrapper::instance().setVoidView(true);
    Bots(slot).Queue.clear();
    event(7, {}, QStringLiteral("The Void"));
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());
}

TEST_F(ChatEventsTest, ABusyMomentOfDifferentUsersIsNoPurge) {
    tickcount::ManualClock clock(100000);
    SettingsWrapper::instance().setFloodMode(1000);
    for (const char* name : {"leaver", "talker"})
        event(1, QString::fromLatin1(name), QStringLiteral("RATS 0"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    ASSERT_EQ(lvUsers(slot).count(), 2);
    EXPECT_EQ(lvUsers(slot).index(0, 1).data(ListModel::TagRole).toString(),
              QStringLiteral("RATS 0"))
        << "the ping's column keeps the statstring";

    // One leaves, another joins, a third talks, all at once: each is shown.
    event(3, QStringLiteral("leaver"));
    event(2, QStringLiteral("joiner"), QStringLiteral("RATS 0"));
    event(5, QStringLiteral("talker"), QStringLiteral("just chatting"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    EXPECT_TRUE(chat().contains(QStringLiteral("just chatting")));
    EXPECT_EQ(listNames(), (QStringList{"talker", "joiner"}));

    // A talk before the leave and rejoin still makes a burst of one user.
    event(5, QStringLiteral("joiner"), QStringLiteral("first words"));
    event(3, QStringLiteral("joiner"));
    event(2, QStringLiteral("Joiner"), QStringLiteral("RATS 0"));
    clock.advance(1100);
    Bots(slot).ShowDelayedEvent(slot);
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    EXPECT_FALSE(chat().contains(QStringLiteral("first words")));
}

TEST_F(ChatEventsTest, AFloodCostsTheOldestHeldEventsWithOneLineAndGivesItsMemoryBack) {
    tickcount::ManualClock clock(100000);
    SettingsWrapper::instance().setFloodMode(1000);
    const int limit = BotElement::kHeldEventLimit;
    for (int n = 0; n < 2 * limit; ++n)
        event(5, QStringLiteral("flooder"), QStringLiteral("line %1").arg(n));
    EXPECT_LE(Bots(slot).DelayCount(), limit);
    EXPECT_EQ(Bots(slot).takeDroppedEvents(), 0) << "told once the flood is over";
    // All that is shown, though the view empties itself when full.
    QString shownText;
    QObject::connect(&rtbChat(slot), &ChatDocument::changed, &rtbChat(slot),
                     [&](int from) { shownText += rtbChat(slot).textFrom(from); });
    clock.advance(1100);
    TimedEvents& timers = TimedEvents::instance();
    for (int tick = 0; tick < 1000 && Bots(slot).DelayCount() > 0; ++tick)
        timers.delayedEventsTick();
    timers.delayedEventsTick();
    EXPECT_EQ(Bots(slot).DelayCount(), 0);
    // The newest are shown, the oldest are not, and one line says how many went.
    EXPECT_TRUE(shownText.contains(QStringLiteral("line %1\r\n").arg(2 * limit - 1)));
    EXPECT_FALSE(shownText.contains(QStringLiteral("line 0\r\n")));
    const int shown = int(shownText.count(QStringLiteral("flooder")));
    EXPECT_EQ(shownText.count(QStringLiteral("Chat flood: dropped the ")), 1);
    EXPECT_TRUE(shownText.contains(
        QStringLiteral("Chat flood: dropped the %1 oldest held events").arg(2 * limit - shown)));
}

// Each pair of settings alone, under the master switches: the events that
// flash and the tips they show. A friend's notice is a whisper too.
TEST_F(ChatEventsTest, EachSettingFlashesAndTipsForItsOwnEventsOnly) {
    SettingsWrapper& s = SettingsWrapper::instance();
    s.setFlashWhisper(true);
    s.setBalloonWhisper(true);
    s.setBalloon(true);
    event(4, QStringLiteral("bob"), QStringLiteral("psst"));
    EXPECT_EQ(flashes.count(), 0) << "Flash, the master switch, is off";
    EXPECT_EQ(balloons.count(), 0) << "tips show only while the window is in the tray";
    s.setFlashWhisper(false);
    s.setBalloonWhisper(false);
    s.setFlash(true);
    DesktopShell::instance().setWindowInTray(true);

    using Set = bool (SettingsWrapper::*)(bool);
    struct Row {
        Set flash;
        Set balloon;
        const char* flashed;
        QStringList tips;
    };
    const QString came = QStringLiteral("Your friend carol has entered Battle.net.");
    const QString left = QStringLiteral("Your friend carol has exited Battle.net.");
    const Row rows[] = {
        {&SettingsWrapper::setFlashTalk,
         &SettingsWrapper::setBalloonTalk,
         "talk",
         {"alice said \"hello all\"."}},
        {&SettingsWrapper::setFlashEmote,
         &SettingsWrapper::setBalloonEmote,
         "emote",
         {"alice emoted \"waves\"."}},
        {&SettingsWrapper::setFlashWhisper,
         &SettingsWrapper::setBalloonWhisper,
         "whisper came left",
         {"bob whispered you saying \"psst\".", "carol whispered you saying \"" + came + "\".",
          "carol whispered you saying \"" + left + "\"."}},
        {&SettingsWrapper::setFlashBan,
         &SettingsWrapper::setBalloonBan,
         "kicked",
         {"dave kicked you out of the channel!"}},
        {&SettingsWrapper::setFlashFriendOn, &SettingsWrapper::setBalloonFriendOn, "came", {came}},
        {&SettingsWrapper::setFlashFriendOff,
         &SettingsWrapper::setBalloonFriendOff,
         "left",
         {left}},
    };
    const std::tuple<quint32, const char*, QString, const char*> events[] = {
        {5, "alice", "hello all", "talk"},
        {23, "alice", "waves", "emote"},
        {4, "bob", "psst", "whisper"},
        {18, "", "dave kicked you out of the channel!", "kicked"},
        {4, "carol", came, "came"},
        {4, "carol", left, "left"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.flashed);
        (s.*row.flash)(true);
        (s.*row.balloon)(true);
        balloons.clear();
        QStringList flashed;
        for (const auto& [id, user, text, name] : events) {
            const qsizetype before = flashes.count();
            event(id, QLatin1String(user), text);
            if (flashes.count() > before) flashed << QLatin1String(name);
        }
        EXPECT_EQ(flashed.join(u' '), QLatin1String(row.flashed));
        QStringList tips;
        for (const QList<QVariant>& tip : std::as_const(balloons)) {
            EXPECT_EQ(tip.at(0).toString(), QStringLiteral("Watcher")) << "titled by the profile";
            tips << tip.at(1).toString();
        }
        EXPECT_EQ(tips, row.tips);
        (s.*row.flash)(false);
        (s.*row.balloon)(false);
    }

    s.setBalloonEmote(true);
    balloons.clear();
    const qsizetype flashed = flashes.count();
    event(23, QStringLiteral("alice"), QString(300, u'x'));
    EXPECT_EQ(flashes.count(), flashed) << "a tip alone does not flash";
    ASSERT_EQ(balloons.count(), 1);
    EXPECT_EQ(balloons.at(0).at(1).toString().size(), 256) << "a long tip is cut";
    EXPECT_TRUE(balloons.at(0).at(1).toString().startsWith(QStringLiteral("alice emoted \"xxx")));
}

// What the chat path remembers between events must never show what the
// store or a file held before a change.
TEST_F(ChatEventsTest, AliasesAndGroupsCountFromTheNextLine) {
    inHallWithBob();
    read({talk("one")});
    EXPECT_EQ(lastLine(), QStringLiteral("<bob> one"));
    CreateAlias(QStringLiteral("Robert"), {QStringLiteral("bob")});
    read({talk("two")});
    EXPECT_EQ(lastLine(), QStringLiteral("<Robert> two"));
    DeleteAlias(QStringLiteral("Robert"));
    read({talk("three")});
    EXPECT_EQ(lastLine(), QStringLiteral("<bob> three"));

    const quint32 plain = GetUserColor(slot, QStringLiteral("bob"), 0, true);
    CreateGroup(QStringLiteral("Ops"), {QStringLiteral("bob")}, 0x123456, {});
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), 0x123456u);
    RegistryWrapper::instance().WriteDWORD(SettingsWrapper::RootKey() + "Groups\\Ops",
                                           QStringLiteral("Color"), 0x654321);
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), 0x654321u);
    DeleteGroup(QStringLiteral("Ops"));
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), plain);
}

// A hand edit between two reads counts in the second; the program's own
// write counts at once, within the same read.
TEST_F(ChatEventsTest, MailEditedByHandCountsOnTheNextJoin) {
    inHallWithBob();
    const auto rejoin = [this] {
        return QList<QByteArray>{chatEventFrame(3, 0, 20, QStringLiteral("bob"), {}),
                                 chatEventFrame(2, 0, 20, QStringLiteral("bob"), "RATS 0")};
    };
    read(rejoin());
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());

    QDir().mkpath(GetProgramFolder() + QStringLiteral("/Mail"));
    writeFile(MailFile(slot), "bob\tann\t12:00:00|1/1/26\thello\r\n");
    read(rejoin());
    ASSERT_EQ(Bots(slot).Queue.size(), 1);
    EXPECT_TRUE(Bots(slot).Queue[0].contains(QStringLiteral("You have 1 new mail")));
    Bots(slot).Queue.clear();

    writeFile(MailFile(slot), "annie\tbob\t12:00:00|1/1/26\thello\r\n");
    read(rejoin());
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());

    {
        const FileStamp::Burst burst;
        NotifyMailOnJoin(slot, QStringLiteral("bob"));
        AddMail(slot, QStringLiteral("bob"), QStringLiteral("again"));
        NotifyMailOnJoin(slot, QStringLiteral("bob"));
    }
    ASSERT_EQ(Bots(slot).Queue.size(), 1);
    EXPECT_TRUE(Bots(slot).Queue[0].contains(QStringLiteral("You have 1 new mail")));
}

TEST_F(ChatEventsTest, AChangeOfZoneCountsAtOnce) {
    const QByteArray before = qgetenv("TZ");
    const bool hadZone = qEnvironmentVariableIsSet("TZ");
    CurrentTheme().time = QStringLiteral("[%hh:%nn:%ss] ");
    qputenv("TZ", "UTC0");
    const QTime utc = LocalClock::now();
    qputenv("TZ", "EAST-5");
    const QTime east = LocalClock::now();
    EXPECT_EQ((east.hour() - utc.hour() + 24) % 24, 5);
    EXPECT_EQ(FormatTimestamp().mid(1, 2),
              QStringLiteral("%1").arg(east.hour(), 2, 10, QChar(u'0')))
        << FormatTimestamp().toStdString();
    if (hadZone)
        qputenv("TZ", before);
    else
        qunsetenv("TZ");
    tzset();
}
