#include "WindowFixture.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "control/WebToken.h"
#include "gui/ChatView.h"
#include "gui/ControlPanelPage.h"
#include "gui/frmControlPanel.h"
#include "platform/ListModel.h"

#include <QButtonGroup>
#include <QClipboard>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <QVariantMap>

namespace {

// The rows whose panels hold settings of the store.
const int kSettingRows[] = {1, 2, 4, 5, 6, 7, 8, 9, 14};

class ControlPanelTest : public WindowFixture {
protected:
    // The tests after these find every setting at its default again.
    void TearDown() override {
        WindowFixture::TearDown();
        RegistryWrapper::instance().KillKey(SettingsWrapper::SettingsKey());
        QFile::remove(AutostartFile());
    }
    frmControlPanel* open(int row) {
        panel = window->showControlPanel(row);
        QApplication::processEvents();
        return panel;
    }
    QWidget* shown() { return panel->page(panel->currentRow()); }
    template <typename T> T* control(const QString& name) {
        T* found = shown()->findChild<T*>(name);
        EXPECT_TRUE(found) << name.toStdString();
        return found;
    }
    void click(const QString& button) {
        auto* found = panel->findChild<QPushButton*>(button);
        ASSERT_TRUE(found) << button.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
    }
    void clickSave() { click(shown()->parentWidget()->objectName() + QStringLiteral("Save")); }
    void clickCancel() { click(shown()->parentWidget()->objectName() + QStringLiteral("Cancel")); }

    // What every named control of the panel on view shows.
    QVariantMap snapshot() {
        QVariantMap shows;
        for (QAbstractButton* box : shown()->findChildren<QAbstractButton*>()) {
            if (box->isCheckable()) shows[box->objectName()] = box->isChecked();
        }
        for (QLineEdit* edit : shown()->findChildren<QLineEdit*>()) {
            if (!edit->objectName().isEmpty()) shows[edit->objectName()] = edit->text();
        }
        for (QComboBox* box : shown()->findChildren<QComboBox*>())
            shows[box->objectName()] = box->currentText();
        return shows;
    }
    // Changes every control of the panel on view.
    void changeEverything() {
        for (QCheckBox* box : shown()->findChildren<QCheckBox*>())
            box->setChecked(!box->isChecked());
        for (QButtonGroup* group : shown()->findChildren<QButtonGroup*>()) {
            const int next = (group->checkedId() + 1) % int(group->buttons().size());
            group->button(next)->setChecked(true);
        }
        for (QLineEdit* edit : shown()->findChildren<QLineEdit*>()) {
            if (!edit->objectName().isEmpty())
                edit->setText(edit->objectName() + QStringLiteral("/path"));
        }
        for (QComboBox* box : shown()->findChildren<QComboBox*>()) {
            if (box->isEditable())
                box->setEditText(box->currentText() == u"12" ? QStringLiteral("13")
                                                             : QStringLiteral("12"));
            else
                box->setCurrentIndex((box->currentIndex() + 1) % box->count());
        }
    }

    frmControlPanel* panel = nullptr;
};

// The View menu's default row opens it on its first row; one window serves
// every opening, and Escape closes it.
TEST_F(ControlPanelTest, TheViewMenuOpensItAndEscapeClosesIt) {
    auto* view = window->findChild<QMenu*>(QStringLiteral("mnuView"));
    ASSERT_TRUE(view);
    view->defaultAction()->trigger();
    panel = window->findChild<frmControlPanel*>();
    ASSERT_TRUE(panel);
    EXPECT_TRUE(panel->isVisible());
    ASSERT_EQ(panel->cbSettings()->count(), 19);
    EXPECT_EQ(panel->currentRow(), 0);
    EXPECT_FALSE(panel->page(0)->hasSaveAndCancel());
    EXPECT_EQ(window->showControlPanel(frmControlPanel::DatabasesRow), panel);
    EXPECT_EQ(panel->currentRow(), 13);
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel));
    QTest::keyClick(panel->cbSettings(), Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
}

// Every control of every setting panel is stored by Save and shown again by
// a fresh window; Cancel throws edits away and keeps the window open.
TEST_F(ControlPanelTest, EverySettingControlSavesAndLoadsBack) {
    for (int row : kSettingRows) {
        SCOPED_TRACE(row);
        open(row);
        const QVariantMap stored = snapshot();
        changeEverything();
        const QVariantMap edited = snapshot();
        for (auto it = edited.begin(); it != edited.end(); ++it) {
            // Of a group of options only two change.
            if (!shown()->findChild<QRadioButton*>(it.key())) {
                EXPECT_NE(it.value(), stored.value(it.key())) << it.key().toStdString();
            }
        }
        clickCancel();
        EXPECT_EQ(snapshot(), stored) << "Cancel shows what is stored";
        EXPECT_TRUE(panel->isVisible());

        changeEverything();
        if (row == 5) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(panel));
            QTest::keyClick(panel, Qt::Key_S, Qt::ControlModifier); // Ctrl+S saves as well
        } else {
            clickSave();
        }
        EXPECT_EQ(panel->lblStatus()->text(), QStringLiteral("Saved."));
        delete panel;
        open(row);
        EXPECT_EQ(snapshot(), edited);
    }
}

// The controls stand for the values the rest of the program reads.
TEST_F(ControlPanelTest, ControlsAreBoundToTheirStoredValues) {
    const std::pair<int, QStringList> checks[] = {
        {1,
         {"h1aNews=RequestNews", "h1aKeys=RequestKeys", "h1aConnect=ShowConnectTime",
          "h1aAdvanced=ShowAdvanced"}},
        {4,
         {"h2aBan=HideBanUnban", "h2aEmote=HideEmote", "h2aJoin=HideJoinLeave",
          "h2aPresent=HidePresent", "h2aOffline=HideOfflineFriends", "h2aChar=HideChars",
          "h2aVoid=VoidView", "h2aUTF8=DecodeUTF8", "h2aDecrypt=Decryption",
          "h2aEncrypt=Encryption", "h2aCensor=RemoveProfanity", "h2aUncensor=ImproveProfanity",
          "h2aAutoCQ=AutoCQ"}},
        {6, {"h2bDraw=IconDraw"}},
        {8,
         {"h2dTrayTip=BalloonEnabled", "h2dTrayTalk=BalloonTalk", "h2dTrayEmo=BalloonEmote",
          "h2dTrayWsp=BalloonWhisper", "h2dTrayBan=BalloonBan", "h2dTrayFriendOn=BalloonFriendOn",
          "h2dTrayFriendOff=BalloonFriendOff", "h2dTrayFriendGame=BalloonFriendGame"}},
        {9,
         {"h2eFlash=FlashEnabled", "h2eFlashTalk=FlashTalk", "h2eFlashEmo=FlashEmote",
          "h2eFlashWsp=FlashWhisper", "h2eFlashBan=FlashBan", "h2eFlashFriendOn=FlashFriendOn",
          "h2eFlashFriendOff=FlashFriendOff", "h2eFlashFriendGame=FlashFriendGame",
          "h2eLog=Logging"}},
    };
    RegistryWrapper& store = RegistryWrapper::instance();
    const QString key = SettingsWrapper::SettingsKey();
    // A box is ticked in the saves that the bits of its place (from one)
    // name, so no two tick alike and two boxes swapped show; the last ticks none.
    for (const auto& [row, pairs] : checks) {
        open(row);
        for (int bit : {0, 1, 2, 3, 4}) {
            for (int at = 0; at < pairs.size(); ++at)
                control<QCheckBox>(pairs[at].section(u'=', 0, 0))->setChecked((at + 1) >> bit & 1);
            clickSave();
            for (int at = 0; at < pairs.size(); ++at)
                EXPECT_EQ(store.ReadDWORD(key, pairs[at].section(u'=', 1), 7), (at + 1) >> bit & 1)
                    << pairs[at].toStdString();
        }
    }

    SettingsWrapper& settings = SettingsWrapper::instance();
    open(4);
    control<QRadioButton>("h2aColign")->setChecked(true);
    clickSave();
    EXPECT_EQ(settings.ColorDisp(), 2);

    open(2);
    control<QRadioButton>("h1bLocal")->setChecked(true);
    EXPECT_TRUE(control<QWidget>("h1bD2XPfind")->isEnabled());
    control<QLineEdit>("h1bD2XP")->setText(QStringLiteral("/games/d2xp"));
    clickSave();
    EXPECT_TRUE(settings.LocalHashing());
    EXPECT_EQ(settings.PathD2XP(), QStringLiteral("/games/d2xp"));
    control<QRadioButton>("h1bRemote")->setChecked(true);
    EXPECT_FALSE(control<QWidget>("h1bD2XPfind")->isEnabled()) << "folders count only locally";
    clickSave();
    EXPECT_FALSE(settings.LocalHashing());

    // Each player's option and launch command, the last one chosen staying.
    open(7);
    const std::tuple<const char*, const char*, const char*, QString (SettingsWrapper::*)() const>
        players[] = {{"h2cOwinamp", "Winamp", "h2cWinamp", &SettingsWrapper::WinampDir},
                     {"h2cOwmp", "WMP", "h2cWmp", &SettingsWrapper::WmpDir},
                     {"h2cOfoobar", "foobar", "h2cFoobar", &SettingsWrapper::FoobarDir},
                     {"h2cOitunes", "iTunes", "h2ciTunes", &SettingsWrapper::iTunesDir}};
    for (const auto& [option, player, path, launch] : players) {
        control<QRadioButton>(option)->setChecked(true);
        control<QLineEdit>(path)->setText(QStringLiteral("/opt/") + QLatin1String(player));
        clickSave();
        EXPECT_EQ(settings.MediaPlayer(), QLatin1String(player));
        EXPECT_EQ((settings.*launch)(), QStringLiteral("/opt/") + QLatin1String(player));
    }
    settings.setMediaPlayer(QStringLiteral("spotify"));
    open(7);
    for (QRadioButton* option : shown()->findChildren<QRadioButton*>())
        EXPECT_EQ(option->isChecked(), option->objectName() == u"h2cOother")
            << "a player of another name is shown by its name";
    QLineEdit* otherName = nullptr;
    for (QLineEdit* edit : shown()->findChildren<QLineEdit*>())
        if (edit->accessibleName() == u"Another player's name") otherName = edit;
    ASSERT_TRUE(otherName);
    EXPECT_EQ(otherName->text(), QStringLiteral("spotify"));
    clickSave();
    EXPECT_EQ(settings.MediaPlayer(), QStringLiteral("spotify"));
    otherName->clear();
    clickSave();
    EXPECT_EQ(settings.MediaPlayer(), QStringLiteral("Winamp")) << "no player named is Winamp";

    // The web page: an address that is none is refused with its reason and
    // nothing stored; the token is copied as the front checks it.
    open(18);
    control<QSpinBox>("h3hPort")->setValue(8460);
    control<QLineEdit>("h3hAddress")->setText(QStringLiteral("my.host"));
    clickSave();
    EXPECT_TRUE(panel->findChild<QMessageBox*>(QStringLiteral("msgNotSaved")));
    EXPECT_EQ(settings.WebPort(), 0);
    control<QLineEdit>("h3hAddress")->setText(QStringLiteral("::1"));
    clickSave();
    EXPECT_EQ(settings.WebPort(), 8460);
    EXPECT_EQ(settings.WebAddress(), QStringLiteral("::1"));
    QTest::mouseClick(control<QPushButton>("h3hCopy"), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), WebToken::Ensure(nullptr));
}

TEST_F(ControlPanelTest, MasterBoxesDisableTheirCompanionsAndLeaveTheirTicks) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    settings.setFlash(false);
    settings.setFlashTalk(true);
    open(9);
    auto* talk = control<QCheckBox>("h2eFlashTalk");
    EXPECT_FALSE(talk->isEnabled()) << "on load";
    EXPECT_TRUE(talk->isChecked());
    EXPECT_TRUE(control<QCheckBox>("h2eLog")->isEnabled()) << "not a companion";
    QTest::mouseClick(control<QCheckBox>("h2eFlash"), Qt::LeftButton);
    EXPECT_TRUE(talk->isEnabled()) << "on click";
    control<QCheckBox>("h2eFlashBan")->setChecked(true);
    QTest::mouseClick(control<QCheckBox>("h2eFlash"), Qt::LeftButton);
    EXPECT_FALSE(control<QCheckBox>("h2eFlashBan")->isEnabled());
    clickSave();
    EXPECT_FALSE(settings.Flash());
    EXPECT_TRUE(settings.FlashBan()) << "the companions are stored as the boxes show them";

    settings.setBalloon(false);
    open(8);
    EXPECT_FALSE(control<QCheckBox>("h2dTrayFriendGame")->isEnabled());
    control<QCheckBox>("h2dTrayTip")->setChecked(true);
    EXPECT_TRUE(control<QCheckBox>("h2dTrayFriendGame")->isEnabled());
}

TEST_F(ControlPanelTest, ChatFontIsSetOnlyWhenChangedAndAppliesAtOnce) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    // A stored font the host lacks would be announced again by every read.
    settings.setChatFont(QFontDatabase::families().first());
    open(5);
    QStringList sets;
    const auto connection =
        QObject::connect(&settings, &SettingsWrapper::settingChanged,
                         [&sets](const QString& property) { sets << property; });
    clickSave();
    EXPECT_FALSE(sets.contains(QStringLiteral("ChatFont")));
    EXPECT_FALSE(sets.contains(QStringLiteral("ChatSize")));
    EXPECT_TRUE(sets.contains(QStringLiteral("ListSize")));

    control<QComboBox>("h2fChatsz")->setEditText(QStringLiteral("14pt"));
    EXPECT_EQ(control<QLabel>("lblExampleChat")->font().pointSize(), 14);
    EXPECT_EQ(control<QLabel>("lblExampleChat")->text(), QStringLiteral("Example Text"));
    clickSave();
    QObject::disconnect(connection);
    EXPECT_EQ(settings.ChatSize(), 14) << "the number at the start of the text";
    EXPECT_EQ(window->chatView(0)->font().pointSize(), 14);
}

TEST_F(ControlPanelTest, FloodModeRowsMatchTheIntervals) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    RegistryWrapper::instance().WriteDWORD(SettingsWrapper::SettingsKey(), "FloodMode", 750);
    open(14);
    auto* flood = control<QComboBox>("h3dFlood");
    ASSERT_EQ(flood->count(), 4);
    EXPECT_EQ(flood->itemText(1), QStringLiteral("Mode 1 ( 500ms )"));
    EXPECT_EQ(flood->currentText(), QStringLiteral("Mode 2 ( 1000ms )"));
    const qint32 intervals[] = {0, 500, 1000, 2000};
    for (int index = 0; index < 4; ++index) {
        flood->setCurrentIndex(index);
        clickSave();
        EXPECT_EQ(settings.FloodMode(), intervals[index]);
    }
}

TEST_F(ControlPanelTest, AnIconSettingRedrawsTheUserListsAtOnce) {
    SettingsWrapper::instance().setIconDisp(0);
    const int slot = onlineSlot(QStringLiteral("Watcher"));
    event(slot, 1, QStringLiteral("Laddered"), QStringLiteral("RATS 0 0 5"));
    const ListModel& users = lvUsers(slot);
    ASSERT_EQ(users.count(), 1);
    EXPECT_EQ(users.item(1).iconKey, QStringLiteral("STAR"));
    open(6);
    control<QRadioButton>("h2bAll")->setChecked(true);
    clickSave();
    EXPECT_EQ(users.item(1).iconKey, QStringLiteral("SC5")) << "five wins";
}

} // namespace
