// The music panel and the menu bar's song rows with a player on a private
// session bus: they reach the player and the label follows the song. (A player that leaves is the
// media tests' concern.)
#include "WindowFixture.h"
#include "gui/MusicPanel.h"
#include "media/FakeMprisPlayer.h"
#include "media/PrivateBus.h"
#include "media/SongWrapper.h"

#include <QLabel>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

class MusicPanelTest : public WindowFixture {};

TEST_F(MusicPanelTest, ButtonsAndMenuRowsDriveThePlayerAndTheLabelFollowsTheSong) {
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
    for (const char* row : {"guiMenu4", "guiMenu5"})
        window->findChild<QAction*>(QLatin1String(row))->trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return player.commands.size() == 5; }));
    EXPECT_EQ(player.commands, (QStringList{"Next", "Previous", "Stop", "Previous", "Next"}));

    player.play(QStringLiteral("Vell"), QStringLiteral("Harbour Lights"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return label->text() == QStringLiteral("Fake Player >> Vell - Harbour Lights"); }))
        << label->text().toStdString();
}

} // namespace
