// The music panel with a player on a private session bus: its buttons reach
// the player and its label follows the song. (A player that leaves is the
// media tests' concern.)
#include "config/SettingsWrapper.h"
#include "gui/MusicPanel.h"
#include "media/FakeMprisPlayer.h"
#include "media/PrivateBus.h"
#include "media/SongWrapper.h"

#include <QLabel>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

TEST(MusicPanelTest, ButtonsDriveThePlayerAndTheLabelFollowsTheSong) {
    const QString address = PrivateBus::instance().address;
    if (address.isEmpty()) GTEST_SKIP() << PrivateBus::instance().error.toStdString();
    SongWrapper::instance().useBus(QDBusConnection::connectToBus(address, QStringLiteral("bot")));
    SongWrapper::install();
    SettingsWrapper::instance().setMediaPlayer(QStringLiteral("fakeplayer"));
    FakeMprisPlayer player(address, QStringLiteral("fakeplayer"));
    ASSERT_TRUE(player.appear());
    player.play(QStringLiteral("Ostrelund"), QStringLiteral("Night Tide"));

    MusicPanel panel;
    panel.show();
    QLabel* label = panel.lblMusicSong();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return label->text() == QStringLiteral("Fake Player >> Ostrelund - Night Tide"); }))
        << label->text().toStdString();

    for (const char* name : {"lblMusicNext", "lblMusicPrevious", "lblMusicStop"}) {
        auto* button = panel.findChild<QToolButton*>(QLatin1String(name));
        ASSERT_NE(button, nullptr) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return player.commands.size() == 3; }));
    EXPECT_EQ(player.commands, (QStringList{"Next", "Previous", "Stop"}));

    player.play(QStringLiteral("Vell"), QStringLiteral("Harbour Lights"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return label->text() == QStringLiteral("Fake Player >> Vell - Harbour Lights"); }))
        << label->text().toStdString();
}

} // namespace
