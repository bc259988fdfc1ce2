#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "shell/DesktopShell.h"

#include <QSignalSpy>
#include <functional>

namespace {

// Which chat events flash the window and show a tray tip, as the settings
// ask, observed where the core hands them to the desktop.
class EventNoticesTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
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
        slot = loadConnected(QStringLiteral("Watcher"));
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = QStringLiteral("Me");
    }
    void TearDown() override { DesktopShell::instance().setWindowInTray(false); }

    void event(quint32 id, const QString& user, const QString& text) {
        wsBNET(slot).simulateData(chatEventFrame(id, 0, 20, user, text));
    }
    void talk() { event(5, QStringLiteral("alice"), QStringLiteral("hello all")); }
    void emote() { event(23, QStringLiteral("alice"), QStringLiteral("waves")); }
    void whisper() { event(4, QStringLiteral("bob"), QStringLiteral("psst")); }
    void friendCame() {
        event(4, QStringLiteral("carol"),
              QStringLiteral("Your friend carol has entered Battle.net."));
    }
    void friendLeft() {
        event(4, QStringLiteral("carol"),
              QStringLiteral("Your friend carol has exited Battle.net."));
    }
    void kicked() { event(18, {}, QStringLiteral("dave kicked you out of the channel!")); }

    QSignalSpy flashes{&DesktopShell::instance(), &DesktopShell::flashRequested};
    QSignalSpy balloons{&DesktopShell::instance(), &DesktopShell::balloonRequested};
    int slot = 0;
};

} // namespace

// Each flash setting alone, under the master switch: the events that flash.
// A friend's notice is a whisper too.
TEST_F(EventNoticesTest, OnlyTheEventsWhoseFlashIsOnFlashTheWindow) {
    SettingsWrapper& s = SettingsWrapper::instance();
    s.setFlashWhisper(true);
    whisper();
    EXPECT_EQ(flashes.count(), 0) << "Flash, the master switch, is off";
    s.setFlashWhisper(false);
    s.setFlash(true);
    const std::pair<bool (SettingsWrapper::*)(bool), const char*> rows[] = {
        {&SettingsWrapper::setFlashTalk, "talk"},
        {&SettingsWrapper::setFlashEmote, "emote"},
        {&SettingsWrapper::setFlashWhisper, "whisper came left"},
        {&SettingsWrapper::setFlashBan, "kicked"},
        {&SettingsWrapper::setFlashFriendOn, "came"},
        {&SettingsWrapper::setFlashFriendOff, "left"},
    };
    const std::pair<std::function<void()>, const char*> events[] = {
        {[this] { talk(); }, "talk"},       {[this] { emote(); }, "emote"},
        {[this] { whisper(); }, "whisper"}, {[this] { kicked(); }, "kicked"},
        {[this] { friendCame(); }, "came"}, {[this] { friendLeft(); }, "left"},
    };
    for (const auto& [set, expected] : rows) {
        (s.*set)(true);
        QStringList flashed;
        for (const auto& [happen, name] : events) {
            const qsizetype before = flashes.count();
            happen();
            if (flashes.count() > before) flashed << QLatin1String(name);
        }
        EXPECT_EQ(flashed.join(u' '), QLatin1String(expected));
        (s.*set)(false);
    }
    EXPECT_EQ(balloons.count(), 0);
}

TEST_F(EventNoticesTest, TrayTipsShowOnlyWhileTheWindowIsInTheTray) {
    SettingsWrapper& s = SettingsWrapper::instance();
    s.setBalloon(true);
    s.setBalloonTalk(true);
    s.setBalloonWhisper(true);
    s.setBalloonBan(true);
    s.setBalloonFriendOn(true);
    talk();
    whisper();
    EXPECT_EQ(balloons.count(), 0) << "the window is on screen";

    DesktopShell::instance().setWindowInTray(true);
    talk();
    emote();
    whisper();
    kicked();
    friendCame();
    friendLeft();
    // A friend notice is a whisper too: with both tips on it shows twice.
    ASSERT_EQ(balloons.count(), 6);
    const auto tip = [this](int i) {
        return balloons.at(i).at(0).toString() + u'|' + balloons.at(i).at(1).toString();
    };
    EXPECT_EQ(tip(0), QStringLiteral("Watcher|alice said \"hello all\"."));
    EXPECT_EQ(tip(1), QStringLiteral("Watcher|bob whispered you saying \"psst\"."));
    EXPECT_EQ(tip(2), QStringLiteral("Watcher|dave kicked you out of the channel!"));
    EXPECT_EQ(tip(3), QStringLiteral("Watcher|carol whispered you saying \"Your friend carol has "
                                     "entered Battle.net.\"."));
    EXPECT_EQ(tip(4), QStringLiteral("Watcher|Your friend carol has entered Battle.net."));
    EXPECT_TRUE(tip(5).startsWith(QStringLiteral("Watcher|carol whispered you saying")))
        << "no tip for a friend leaving";

    s.setBalloonEmote(true);
    event(23, QStringLiteral("alice"), QString(300, u'x'));
    ASSERT_EQ(balloons.count(), 7);
    EXPECT_EQ(balloons.at(6).at(1).toString().size(), 256) << "a long tip is cut";
    EXPECT_TRUE(balloons.at(6).at(1).toString().startsWith(QStringLiteral("alice emoted \"xxx")));
    EXPECT_EQ(flashes.count(), 0);
}
