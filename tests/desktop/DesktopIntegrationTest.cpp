#include "desktop/DesktopIntegration.h"

#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "desktop/HideHotkey.h"
#include "desktop/SplashWindow.h"
#include "desktop/WindowFader.h"
#include "platform/ChatDocument.h"
#include "shell/DesktopShell.h"

#include <QIcon>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>

namespace {

// The opacities a fade goes through, its last step included.
std::vector<int> fade(int from, int target, bool fadeIn) {
    std::vector<int> steps;
    bool done = false;
    int opacity = from;
    while (!done && steps.size() < 20) {
        opacity = WindowFader::NextOpacity(opacity, target, fadeIn, done);
        steps.push_back(opacity);
    }
    return steps;
}

class DesktopIntegrationTest : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        SettingsWrapper::instance().setTray(true);
        DesktopShell::instance().showWindow();
        window.resize(400, 300);
    }
    void TearDown() override { DesktopShell::instance().showWindow(); }

    QMainWindow window;
};

} // namespace

TEST(WindowFaderTest, FadesInToTheSettingAndOutToNothingInEighths) {
    EXPECT_EQ(fade(0, 60, true), (std::vector<int>{12, 24, 36, 48, 60, 60}));
    EXPECT_EQ(fade(0, 50, true), (std::vector<int>{12, 24, 36, 48, 60, 50}));
    EXPECT_EQ(fade(0, 100, true), (std::vector<int>{12, 24, 36, 48, 60, 72, 84, 96, 100}));
    EXPECT_EQ(fade(100, 100, false), (std::vector<int>{88, 76, 64, 52, 40, 28, 16, 4, 0}));
}

TEST_F(DesktopIntegrationTest, MinimisedWithATrayTheWindowGoesThereAndComesBack) {
    DesktopIntegration desktop(&window, QIcon(), nullptr, true);
    window.show();
    EXPECT_FALSE(DesktopShell::instance().WindowInTray());
    window.showMinimized();
    QTRY_VERIFY(!window.isVisible());
    EXPECT_TRUE(DesktopShell::instance().WindowInTray());
    EXPECT_TRUE(DesktopShell::instance().WindowHidden()) << "Alt+M brings it back";

    desktop.Restore();
    QTRY_VERIFY(window.isVisible());
    EXPECT_FALSE(window.isMinimized());
    EXPECT_FALSE(DesktopShell::instance().WindowInTray());

    // The hot key, twice, returns the window to the view it had.
    DesktopShell::instance().toggleWindow();
    QTRY_VERIFY(!window.isVisible());
    DesktopShell::instance().toggleWindow();
    QTRY_VERIFY(window.isVisible());

    SettingsWrapper::instance().setTray(false);
    window.showMinimized();
    QTest::qWait(50);
    EXPECT_TRUE(window.isVisible()) << "Tray off: the window stays on the task bar";
}

TEST_F(DesktopIntegrationTest, WithoutATrayTheWindowIsNeverHidden) {
    DesktopIntegration desktop(&window, QIcon(), nullptr, false);
    window.show();
    window.showMinimized();
    QTest::qWait(50);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(DesktopShell::instance().WindowInTray()) << "tips go to the notifications";

    desktop.Restore();
    QTRY_VERIFY(!window.isMinimized());
    DesktopShell::instance().hideWindow();
    QTRY_VERIFY(window.isMinimized());
    EXPECT_TRUE(window.isVisible()) << "with nothing to come back from, hiding minimises";
}

TEST_F(DesktopIntegrationTest, OnlyAWindowTheUserIsNotInFlashesUntilTheUserComesBack) {
    DesktopIntegration desktop(&window, QIcon(), nullptr, true);
    DesktopShell::instance().FlashBotWindow();
    EXPECT_TRUE(desktop.FlashActive()) << "hidden";
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_FALSE(desktop.FlashActive()) << "the user came back";
    DesktopShell::instance().FlashBotWindow();
    EXPECT_FALSE(desktop.FlashActive());
}

TEST_F(DesktopIntegrationTest, AHotKeyThisDesktopCannotHaveIsSaidOnce) {
    HideHotkey hotkey;
    hotkey.RegisterHideHotkey();
    QTRY_VERIFY_WITH_TIMEOUT(rtbChat(0).text().contains(QStringLiteral("Alt+M")), 5000);
    EXPECT_FALSE(hotkey.Registered());
    hotkey.RegisterHideHotkey();
    QTest::qWait(200);
    EXPECT_EQ(rtbChat(0).text().count(QStringLiteral("Alt+M")), 1);
}

TEST(SplashWindowTest, KeepsTheLatestThirteenStepsWithTheNewestAtTheBottom) {
    SplashWindow splash;
    for (int i = 1; i <= 14; ++i)
        splash.Status(QStringLiteral("Step %1..").arg(i));
    ASSERT_EQ(splash.lines().size(), SplashWindow::kLines);
    EXPECT_EQ(splash.lines().first(), QStringLiteral("Step 2.."));
    EXPECT_EQ(splash.lines().last(), QStringLiteral("Step 14.."));
    splash.Status(QStringLiteral("Importing Groups && Aliases.."));
    EXPECT_EQ(splash.lines().last(), QStringLiteral("Importing Groups & Aliases.."));
    splash.ClearStatus();
    EXPECT_EQ(splash.lines(), QStringList(SplashWindow::kLines, QString()));
}
