// The media player as a user meets it: a player on a private session bus
// that the bot watches, announces and drives, and one that never answers.
#include "chat/TimedEvents.h"
#include "commands/ChatInput.h"
#include "commands/DatabaseWrapper.h"
#include "common/ChatFixture.h"
#include "common/SandboxProcess.h"
#include "media/FakeMprisPlayer.h"
#include "media/PrivateBus.h"
#include "media/SongWrapper.h"
#include "platform/ListModel.h"
#include "plugins/PluginHost.h"

#include <QElapsedTimer>
#include <QTimer>
#include <memory>

namespace {

// Notes every media event a plug-in hears.
class MediaPlugin : public PluginObject {
public:
    QVariant call(const QString& member, QVariantList& args) override {
        heard << member + u':' + args.value(0).toString();
        return {};
    }
    QStringList heard;
};

class MediaTest : public ChatFixture {
protected:
    static void SetUpTestSuite() {
        const QString address = PrivateBus::instance().address;
        if (address.isEmpty()) return;
        SongWrapper::instance().useBus(
            QDBusConnection::connectToBus(address, QStringLiteral("bot")));
        SongWrapper::install();
    }

    void SetUp() override {
        if (PrivateBus::instance().address.isEmpty())
            GTEST_SKIP() << PrivateBus::instance().error.toStdString();
        ChatFixture::SetUp();
        slot = loadConnected(QStringLiteral("listener"));
        Bots(slot).setOnline(true);
        SettingsWrapper::instance().setMediaPlayer(QStringLiteral("fakeplayer"));
        player = std::make_unique<FakeMprisPlayer>(PrivateBus::instance().address,
                                                   QStringLiteral("fakeplayer"));
        ASSERT_TRUE(player->appear());
        player->play(QStringLiteral("Ostrelund"), QStringLiteral("Night Tide"));
        ASSERT_TRUE(waitFor([] { return SongWrapper::instance().Opened(); }));
        ASSERT_TRUE(waitFor([] { return !SongWrapper::instance().CurrentSong().isEmpty(); }));
    }
    void TearDown() override {
        PluginHost::instance().clear();
        player.reset();
        waitFor([] { return !SongWrapper::instance().Opened(); }, 2000);
    }

    // What a typed slash command answered on screen.
    QString typed(const QString& line) {
        rtbChat(slot).clear();
        SendUserLine(slot, line);
        return rtbChat(slot).text().trimmed();
    }

    int slot = 0;
    std::unique_ptr<FakeMprisPlayer> player;
};

} // namespace

TEST_F(MediaTest, CommandsShowTheSongAndReachThePlayer) {
    EXPECT_EQ(typed(QStringLiteral("/mp3")), QStringLiteral("[fakeplayer] Ostrelund - Night Tide"));
    EXPECT_EQ(typed(QStringLiteral("/next")), QStringLiteral("Skipped to next song."));
    EXPECT_EQ(typed(QStringLiteral("/pause")), QStringLiteral("Playback paused."));
    ASSERT_TRUE(waitFor([&] { return player->commands.size() == 2; }));
    EXPECT_EQ(player->commands, (QStringList{"Next", "PlayPause"}));
    EXPECT_TRUE(waitFor([] { return !SongWrapper::instance().Playing(); }))
        << "the pause is seen from the player's own signal";

    // A known name whose own player is missing uses the one that runs, and
    // the label names it; a missing player of its own name finds none.
    // Of two stand-ins the paused one is taken over the stopped one.
    FakeMprisPlayer stopped(PrivateBus::instance().address, QStringLiteral("stopped"));
    ASSERT_TRUE(stopped.appear());
    SettingsWrapper::instance().setMediaPlayer(QStringLiteral("stopped"));
    ASSERT_TRUE(waitFor([] { return SongWrapper::instance().Opened(); }));
    SettingsWrapper::instance().setMediaPlayer(QStringLiteral("Winamp"));
    EXPECT_EQ(SongWrapper::instance().MusicLabel(),
              QStringLiteral("Fake Player >> Ostrelund - Night Tide"));
    typed(QStringLiteral("/unloadplayer"));
    typed(QStringLiteral("/stop"));
    ASSERT_TRUE(waitFor([&] { return player->commands.size() == 3; }));
    EXPECT_EQ(player->commands.last(), QStringLiteral("Stop")) << "a stand-in is not closed";
    EXPECT_EQ(typed(QStringLiteral("/setplayer nosuchplayer")),
              QStringLiteral("Invalid media player, try foobar, iTunes, Winamp or WMP."));
    EXPECT_EQ(typed(QStringLiteral("/setplayer fakeplayer")),
              QStringLiteral("Changed current media player to fakeplayer"));
}

TEST_F(MediaTest, ASongChangeReachesTheLabelTheIdleMessageAndPluginsOnce) {
    auto plugin = std::make_shared<MediaPlugin>();
    PluginHost::instance().add({QStringLiteral("listener"), 0, plugin});
    PluginHost::instance().RegisterPlugin(QStringLiteral("listener"), PluginHost::MediaEvents);
    ASSERT_TRUE(waitFor([&] { return !plugin->heard.isEmpty(); }));
    EXPECT_EQ(plugin->heard.first(), QStringLiteral("SongChange:Ostrelund - Night Tide"))
        << "the song playing when it asked";
    player->play(QStringLiteral("Vell"), QStringLiteral("Harbour Lights"));
    ASSERT_TRUE(waitFor([] {
        return SongWrapper::instance().MusicLabel() ==
               QStringLiteral("Fake Player >> Vell - Harbour Lights");
    })) << SongWrapper::instance().MusicLabel().toStdString();
    EXPECT_EQ(TimedEvents::ExpandIdleMessage(slot, QStringLiteral("Now: $mp3 in $ch")),
              QStringLiteral("Now: Vell - Harbour Lights in ") + Bots(slot).Channel());
    waitFor([] { return false; }, 100);
    EXPECT_EQ(plugin->heard.count(QStringLiteral("SongChange:Vell - Harbour Lights")), 1);

    typed(QStringLiteral("/stop"));
    EXPECT_EQ(plugin->heard.last(), QStringLiteral("StopSong:"));
}

TEST_F(MediaTest, APlayerThatLeavesAndComesBackIsNoticedAndOneThatNeverAnswersStallsNothing) {
    player->leave();
    ASSERT_TRUE(waitFor([] { return !SongWrapper::instance().Opened(); }));
    EXPECT_EQ(SongWrapper::instance().MusicLabel(), QStringLiteral("fakeplayer is not running"));
    EXPECT_EQ(typed(QStringLiteral("/mp3")), QStringLiteral("[fakeplayer]"));
    EXPECT_EQ(typed(QStringLiteral("/next")),
              QStringLiteral("Cannot change song, Please launch fakeplayer."));
    EXPECT_TRUE(player->commands.isEmpty());

    ASSERT_TRUE(player->appear());
    ASSERT_TRUE(waitFor([] { return SongWrapper::instance().Opened(); }));
    EXPECT_TRUE(waitFor([] {
        return SongWrapper::instance().CurrentSong() == QStringLiteral("Ostrelund - Night Tide");
    }));

    // One that never answers does not stall the bot.
    player->leave();
    FakeMprisPlayer hung(PrivateBus::instance().address, QStringLiteral("hung"),
                         FakeMprisPlayer::Answers::Never);
    ASSERT_TRUE(hung.appear());
    SettingsWrapper::instance().setMediaPlayer(QStringLiteral("hung"));
    ASSERT_TRUE(waitFor([] { return SongWrapper::instance().Opened(); }));

    // The loop's heartbeat: the longest gap between two ticks of 5 ms.
    QElapsedTimer clock;
    qint64 last = 0;
    qint64 longest = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] {
        longest = std::max(longest, clock.elapsed() - last);
        last = clock.elapsed();
    });
    clock.start();
    beat.start(5);
    for (int round = 0; round < 10; ++round) {
        typed(QStringLiteral("/next"));
        typed(QStringLiteral("/pause"));
        typed(QStringLiteral("/mp3"));
        SongWrapper::instance().MusicLabel();
        waitFor([] { return false; }, 50);
    }
    EXPECT_GE(hung.commands.count(QStringLiteral("Next")), 10) << "the commands went out";
    EXPECT_EQ(SongWrapper::instance().CurrentSong(), QString()) << "nothing known, nothing said";
    EXPECT_LT(longest, 200) << "the longest stall of the event loop, in ms";
}

TEST_F(MediaTest, ARankedUserAsksTheBotForTheSongInTheChannel) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    settings.setLocalHashing(false);
    settings.setFloodMode(0);
    SandboxProcess sandbox;
    ASSERT_TRUE(sandbox.start());
    const int keeper = sandbox.loadProfile(QStringLiteral("keeper"), QStringLiteral("Media"));
    const int owner = sandbox.loadProfile(QStringLiteral("owner"), QStringLiteral("Media"));
    Bots(keeper).Config.setTrigger(QStringLiteral("."));
    Bots(keeper).setDatabase(QStringLiteral("media"));
    DatabaseWrapper().AddUser(keeper, QStringLiteral("owner"), 30);
    TimedEvents::instance().start();
    for (int i : {keeper, owner})
        SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(waitFor([&] { return lvUsers(owner).count() == 2; }, 30000));
    Bots(owner).Queue << QStringLiteral(".mp3");
    EXPECT_TRUE(waitFor(
        [&] {
            return rtbChat(owner).text().contains(
                QStringLiteral("[fakeplayer] Ostrelund - Night Tide"));
        },
        15000));
    TimedEvents::instance().stop();
}
