#include "WindowFixture.h"
#include "chat/TimedEvents.h"
#include "gui/ChatView.h"
#include "gui/IconPainter.h"
#include "gui/ProfileTabBar.h"
#include "presentation/Theme.h"

#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QToolButton>

namespace {

class WindowTest : public WindowFixture {
protected:
    QStringList loadProfiles(int count) {
        QStringList names;
        for (int i = 1; i <= count; ++i) {
            names << QStringLiteral("Profile%1").arg(i, 2, 10, QLatin1Char('0'));
            SlotTable::instance().LoadProfile(names.back());
        }
        return names;
    }
    void resizeTo(int width) {
        window->resize(width, 500);
        QApplication::processEvents();
        window->tmrUpdate_Timer();
    }
    ProfileTabBar& tabs() { return *window->tabBar(); }
    QString console() { return rtbChat(0).text(); }
};

TEST_F(WindowTest, TabsOverflowIntoTheMenuAndComeBackWhenTheWindowWidens) {
    const QStringList names = loadProfiles(10);
    resizeTo(frmBot::kMinimumSize.width());
    const QStringList shown = tabs().tabProfiles();
    const QStringList overflow = tabs().overflowProfiles();
    ASSERT_FALSE(shown.isEmpty());
    ASSERT_FALSE(overflow.isEmpty());
    // The first profiles keep their tabs, the last ones go to the menu, in order.
    EXPECT_EQ(shown + overflow, names);
    EXPECT_EQ(tabs().profilesListRows(), overflow);
    EXPECT_FALSE(tabs().guiProfileDrop()->isHidden());
    // No tab reaches under the buttons at the right.
    const QRect last = tabs().tabRect(shown.back());
    EXPECT_LT(last.right(), tabs().guiProfileAdd()->geometry().left());

    // Choosing an overflowed profile makes its slot the active one.
    const QString chosen = overflow.back();
    tabs().mnuProfilesList()->actions().back()->trigger();
    EXPECT_EQ(SlotTable::instance().CurrentIndex(), SlotTable::instance().findProfile(chosen));

    resizeTo(1900);
    EXPECT_EQ(tabs().tabProfiles(), names);
    EXPECT_TRUE(tabs().overflowProfiles().isEmpty());
    EXPECT_EQ(tabs().profilesListRows(), QStringList{QStringLiteral("-")});
    EXPECT_TRUE(tabs().guiProfileDrop()->isHidden());

    // Narrow again: the same split as before.
    resizeTo(frmBot::kMinimumSize.width());
    EXPECT_EQ(tabs().tabProfiles(), shown);
}

TEST_F(WindowTest, TabPicturesAndTooltipsFollowTheSlots) {
    const int offline = SlotTable::instance().LoadProfile(QStringLiteral("Quiet"));
    Bots(offline).Config.setAccount(QStringLiteral("quietacct"));
    const int online = onlineSlot(QStringLiteral("Busy"), QStringLiteral("Clan Home"));
    window->tmrUpdate_Timer();
    EXPECT_EQ(tabs().tabPicture({}), IconPainter::TabActive);
    EXPECT_EQ(tabs().tabPicture(QStringLiteral("Quiet")), IconPainter::TabOffline);
    EXPECT_EQ(tabs().tabTooltip(QStringLiteral("Quiet")),
              QStringLiteral("quietacct is not connected!"));
    EXPECT_EQ(tabs().tabPicture(QStringLiteral("Busy")), IconPainter::TabOnline);
    EXPECT_EQ(tabs().tabTooltip(QStringLiteral("Busy")),
              QStringLiteral("Connected on account: Busy in channel: Clan Home."));

    // Talk on a slot that isn't on screen marks its tab until it is selected.
    event(online, 5, QStringLiteral("someone"), QStringLiteral("hello there"));
    window->tmrUpdate_Timer();
    EXPECT_EQ(tabs().tabPicture(QStringLiteral("Busy")), IconPainter::TabTalk);
    EXPECT_EQ(tabs().tabTooltip(QStringLiteral("Busy")),
              QStringLiteral("Connected on account: Busy in active channel: Clan Home."));

    // A right-button release on the tab selects it and opens the profile menu.
    QTest::mouseRelease(&tabs(), Qt::RightButton, {},
                        tabs().tabRect(QStringLiteral("Busy")).center());
    EXPECT_EQ(SlotTable::instance().CurrentIndex(), online);
    EXPECT_TRUE(window->mnuProfileClick()->isVisible());
    window->mnuProfileClick()->hide();
    EXPECT_EQ(tabs().tabPicture(QStringLiteral("Busy")), IconPainter::TabActive);
    EXPECT_EQ(tabs().tabPicture({}), IconPainter::TabOffline);
    EXPECT_FALSE(Bots(online).IsActive);
    EXPECT_FALSE(tabs().guiCloseTab()->isHidden());
    // The rows of its menu act on it.
    pick(window->mnuProfileClick(), QStringLiteral("Always Load"));
    pick(window->mnuProfileClick(), QStringLiteral("Disconnect"));
    EXPECT_TRUE(Bots(online).Config.StartupLoad());
    EXPECT_TRUE(rtbChat(online).text().contains(QStringLiteral("[Connections Closed]")));

    // The close button unloads the active profile; the first one left comes
    // on screen, and with the last one gone the console.
    tabs().guiCloseTab()->click();
    EXPECT_FALSE(Bots(online).IsLoaded);
    EXPECT_EQ(SlotTable::instance().CurrentIndex(), offline);
    EXPECT_EQ(tabs().tabProfiles(), QStringList{QStringLiteral("Quiet")});
    tabs().guiCloseTab()->click();
    EXPECT_EQ(SlotTable::instance().CurrentIndex(), 0);
    EXPECT_TRUE(tabs().tabProfiles().isEmpty());
    EXPECT_TRUE(tabs().guiCloseTab()->isHidden());
}

// The Bot menu acts on the profile on screen: on the console it refuses,
// and Clear leaves the console alone.
TEST_F(WindowTest, TheBotMenuActsOnTheProfileOnScreenOnly) {
    SlotTable::instance().SelectBot(0);
    window->mnuConnect()->trigger();
    EXPECT_TRUE(console().contains(
        QStringLiteral("Cannot connect a socket when console is the active window.")));
    window->mnuDisconnect()->trigger();
    EXPECT_TRUE(console().contains(
        QStringLiteral("[BNLS] Cannot disconnect a socket when console is the active window.")));
    EXPECT_EQ(wsBNLS(0).State(), SocketControl::Closed);
    EXPECT_EQ(wsBNET(0).State(), SocketControl::Closed);

    const int slot = onlineSlot(QStringLiteral("Actor"));
    rtbWhisper(slot).append(u"whispered\r\n", CharFormat{});
    SlotTable::instance().SelectBot(slot);
    ASSERT_FALSE(rtbChat(slot).isEmpty());
    const QString consoleBefore = console();
    window->mnuClear()->trigger();
    EXPECT_TRUE(rtbChat(slot).isEmpty());
    EXPECT_TRUE(rtbWhisper(slot).isEmpty());
    window->chatView(slot)->flush();
    EXPECT_TRUE(window->chatView(slot)->toPlainText().isEmpty());
    EXPECT_EQ(console(), consoleBefore);

    EXPECT_EQ(window->mnuConnect()->text(), QStringLiteral("Reconnect"));
    window->mnuDisconnect()->trigger();
    EXPECT_FALSE(Bots(slot).Online());
    EXPECT_FALSE(Bots(slot).CanConnect);
    EXPECT_EQ(wsBNET(slot).State(), SocketControl::Closed);
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("[Connections Closed]")));
    TimedEvents::instance().statusTick();
    EXPECT_EQ(window->mnuConnect()->text(), QStringLiteral("Connect"));
    EXPECT_EQ(window->lblStatus()->text(), QStringLiteral("Disconnected!"));
    EXPECT_EQ(window->windowTitle(), TimedEvents::instance().Caption());
}

// The Request rows keep each answer where the logon reads it.
TEST_F(WindowTest, TheRequestRowsKeepEachAnswerInItsPlace) {
    const int slot = onlineSlot(QStringLiteral("Asker"));
    SlotTable::instance().SelectBot(slot);
    const auto ask = [this](const QString& request, const QStringList& answers) {
        pick(window->findChild<QMenu*>(QStringLiteral("mnuRequest")), request);
        for (const QString& answer : answers) {
            QInputDialog* box = nullptr;
            for (QInputDialog* shown : window->findChildren<QInputDialog*>())
                box = shown->isVisible() ? shown : box;
            ASSERT_NE(box, nullptr) << request.toStdString();
            box->setTextValue(answer);
            box->accept();
        }
    };
    BotElement& bot = Bots(slot);
    ask(QStringLiteral("Change E-mail"), {"old@mail", "new@mail"});
    EXPECT_EQ(bot.RegisterEmail, QStringLiteral("old@mail"));
    EXPECT_EQ(bot.NewEmail, QStringLiteral("new@mail"));
    EXPECT_TRUE(bot.ChangeEmail);
    ask(QStringLiteral("Change Password"), {"oldpass", "newpass"});
    EXPECT_EQ(bot.Config.Password(), QStringLiteral("oldpass"));
    EXPECT_EQ(bot.NewPassword, QStringLiteral("newpass"));
    EXPECT_TRUE(bot.ChangePassword);
    ask(QStringLiteral("Forgot Password"), {"me@mail"});
    EXPECT_EQ(bot.RegisterEmail, QStringLiteral("me@mail"));
    EXPECT_TRUE(bot.ForgotPassword);
}

// The channels panel joins the home channel and the quick rows, and keeps
// what is typed into them with the profile.
TEST_F(WindowTest, TheChannelsPanelJoinsHomeAndTheQuickRows) {
    const int slot = onlineSlot(QStringLiteral("Roamer"));
    Bots(slot).Config.setChannel(QStringLiteral("Home Base"));
    SlotTable::instance().SelectBot(slot);
    auto* quick = window->findChild<QLineEdit*>(QStringLiteral("txtQuick2"));
    quick->setText(QStringLiteral("Op Nest"));
    Q_EMIT quick->textEdited(quick->text()); // as a person's typing does
    EXPECT_EQ(Bots(slot).Config.Channels(2), QStringLiteral("Op Nest"));
    QList<QToolButton*> joins;
    for (QToolButton* button : window->findChildren<QToolButton*>())
        if (button->toolTip() == u"Join channel") joins << button;
    ASSERT_GT(joins.size(), 2);
    const auto joined = [&](QToolButton* button) {
        wsBNET(slot).sent.clear();
        button->click();
        return wsBNET(slot).sent.value(1).mid(8);
    };
    EXPECT_EQ(joined(window->findChild<QToolButton*>(QStringLiteral("guiHome"))),
              QByteArray("Home Base", 10));
    EXPECT_EQ(joined(joins[2]), QByteArray("Op Nest", 8));
}

TEST_F(WindowTest, TheListHeadingNamesTheChosenList) {
    EXPECT_EQ(window->lblList()->text(), QStringLiteral(" -- Disconnected -- "));
    const int slot = onlineSlot(QStringLiteral("Lister"), QStringLiteral("Town"));
    event(slot, 1, QStringLiteral("alice"), QStringLiteral("RATS 0"));
    event(slot, 1, QStringLiteral("bob"), QStringLiteral("RATS 0"));
    SlotTable::instance().SelectBot(slot);
    EXPECT_EQ(window->lblList()->text(), QStringLiteral(" -- Town (2) -- "));
    window->SelectedList = QStringLiteral("Friends");
    window->SelectList();
    EXPECT_EQ(window->lblList()->text(), QStringLiteral(" -- Friends (0) -- "));
    // The tag as it travels: turned round and padded.
    Bots(slot).setClanTag(QString::fromLatin1("gaT\0", 4));
    window->SelectedList = QStringLiteral("Clan");
    window->SelectList();
    EXPECT_EQ(window->lblList()->text(), QStringLiteral(" -- Clan Tag (0) -- "));
    window->SelectedList = QStringLiteral("Anything");
    window->SelectList();
    EXPECT_EQ(window->SelectedList, QStringLiteral("Users"));
    EXPECT_EQ(window->lblList()->text(), QStringLiteral(" -- Town (2) -- "));
}

TEST_F(WindowTest, StoredProfilesThatAreNotLoadedCanBeLoadedFromTheAddMenu) {
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Stored"));
    Bots(slot).Config.setAccount(QStringLiteral("stored"));
    SlotTable::instance().UnloadProfile(QStringLiteral("Stored"));
    pick(window->mnuProfiles(), QStringLiteral("Stored"));
    EXPECT_NE(SlotTable::instance().findProfile(QStringLiteral("Stored")), 0);
    EXPECT_TRUE(tabs().tabProfiles().contains(QStringLiteral("Stored")));
    EXPECT_EQ(row(window->mnuProfiles(), QStringLiteral("Stored")), nullptr);
}

TEST_F(WindowTest, TheWhisperPanelSidebarAndLockFollowTheirSettings) {
    const int slot = onlineSlot(QStringLiteral("Panels"));
    SlotTable::instance().SelectBot(slot);
    EXPECT_FALSE(window->whisperView(slot)->isVisible());
    SettingsWrapper::instance().setWhisperPanel(true);
    EXPECT_TRUE(window->whisperView(slot)->isVisible());
    EXPECT_FALSE(window->whisperView(0)->isVisible());
    window->guiToolbar(5);
    EXPECT_FALSE(SettingsWrapper::instance().Sidebar());
    EXPECT_FALSE(window->sidebar()->isVisible());
    window->guiToolbar(5);
    EXPECT_TRUE(window->sidebar()->isVisible());
    pick(window->findChild<QMenu*>(QStringLiteral("mnuWindow")), QStringLiteral("Locked"));
    EXPECT_TRUE(SettingsWrapper::instance().Locked());
    window->resize(100, 100);
    EXPECT_GE(window->width(), frmBot::kMinimumSize.width());
    EXPECT_GE(window->height(), frmBot::kMinimumSize.height());
}

// (What importing and choosing a theme say and store is the theme test's.)
TEST_F(WindowTest, TheThemeMenuListsTheStyleSheetsAndDressesTheWindow) {
    SeedDefaultThemes();
    const auto rows = [&] {
        QStringList names;
        for (QAction* action : window->mnuTheme()->actions()) {
            if (action->isCheckable()) names << action->text();
        }
        return names;
    };
    window->mnuTheme()->actions().first()->trigger(); // Reload List
    ASSERT_TRUE(rows().contains(QStringLiteral("Default")));
    window->setStyleSheet({});
    pick(window->mnuTheme(), QStringLiteral("Default"));
    EXPECT_EQ(SettingsWrapper::instance().ThemeID(), QStringLiteral("Default.theme"));
    EXPECT_FALSE(window->styleSheet().isEmpty());
}

} // namespace
