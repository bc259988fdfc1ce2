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

// Each pair of settings alone, under the master switches: the events that
// flash and the tips they show. A friend's notice is a whisper too.
TEST_F(EventNoticesTest, EachSettingFlashesAndTipsForItsOwnEventsOnly) {
    SettingsWrapper& s = SettingsWrapper::instance();
    s.setFlashWhisper(true);
    s.setBalloonWhisper(true);
    s.setBalloon(true);
    whisper();
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
        {&SettingsWrapper::setFlashTalk, &SettingsWrapper::setBalloonTalk, "talk",
         {"alice said \"hello all\"."}},
        {&SettingsWrapper::setFlashEmote, &SettingsWrapper::setBalloonEmote, "emote",
         {"alice emoted \"waves\"."}},
        {&SettingsWrapper::setFlashWhisper, &SettingsWrapper::setBalloonWhisper,
         "whisper came left",
         {"bob whispered you saying \"psst\".", "carol whispered you saying \"" + came + "\".",
          "carol whispered you saying \"" + left + "\"."}},
        {&SettingsWrapper::setFlashBan, &SettingsWrapper::setBalloonBan, "kicked",
         {"dave kicked you out of the channel!"}},
        {&SettingsWrapper::setFlashFriendOn, &SettingsWrapper::setBalloonFriendOn, "came", {came}},
        {&SettingsWrapper::setFlashFriendOff, &SettingsWrapper::setBalloonFriendOff, "left",
         {left}},
    };
    const std::pair<std::function<void()>, const char*> events[] = {
        {[this] { talk(); }, "talk"},       {[this] { emote(); }, "emote"},
        {[this] { whisper(); }, "whisper"}, {[this] { kicked(); }, "kicked"},
        {[this] { friendCame(); }, "came"}, {[this] { friendLeft(); }, "left"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.flashed);
        (s.*row.flash)(true);
        (s.*row.balloon)(true);
        balloons.clear();
        QStringList flashed;
        for (const auto& [happen, name] : events) {
            const qsizetype before = flashes.count();
            happen();
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
    event(23, QStringLiteral("alice"), QString(300, u'x'));
    ASSERT_EQ(balloons.count(), 1);
    EXPECT_EQ(balloons.at(0).at(1).toString().size(), 256) << "a long tip is cut";
    EXPECT_TRUE(balloons.at(0).at(1).toString().startsWith(QStringLiteral("alice emoted \"xxx")));
}
