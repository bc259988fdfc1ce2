#include "ProfileFixture.h"
#include "chat/BotElement.h"
#include "gui/ProfileTabBar.h"
#include "gui/frmConfigManageIdles.h"
#include "gui/frmConfigManageProfile.h"
#include "platform/SocketControl.h"

#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QToolButton>

namespace {

class ProfileManagerTest : public ProfileFixture {
protected:
    // Opened as a person does, from the menu beside the tabs.
    void SetUp() override {
        ProfileFixture::SetUp();
        QAction* createManage = window->mnuProfileAdd()->actions().value(0);
        ASSERT_EQ(createManage->objectName(), QStringLiteral("mnuCreateManage"));
        createManage->trigger();
        manager = window->findChild<frmConfigManageProfile*>();
        ASSERT_NE(manager, nullptr);
    }
    QStringList listed() const {
        QStringList names;
        for (int row = 0; row < manager->List1()->count(); ++row)
            names << manager->List1()->item(row)->text();
        return names;
    }
    QString selected() const {
        const QListWidgetItem* item = manager->List1()->currentItem();
        return item ? item->text() : QString();
    }
    // By the keyboard: the name, then Enter.
    void add(const QString& name) {
        manager->Text1()->setText(name);
        QTest::keyClick(manager->Text1(), Qt::Key_Return);
        QApplication::processEvents();
    }
    void select(const QString& name) {
        manager->List1()->setCurrentItem(
            manager->List1()->findItems(name, Qt::MatchFixedString).value(0));
    }
    // Answers the name question of clone or rename; a null text cancels.
    void answer(const QString& text) {
        auto* box = manager->findChild<QInputDialog*>(QStringLiteral("nameBox"));
        ASSERT_NE(box, nullptr);
        if (text.isNull()) {
            box->reject();
        } else {
            box->setTextValue(text);
            box->accept();
        }
        delete box;
    }
    void confirmDelete(QMessageBox::StandardButton button) {
        auto* box = manager->findChild<QMessageBox*>(QStringLiteral("deleteQuestion"));
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), QStringLiteral("Are you sure you want to delete this profile? \n"
                                              "Warning: This cannot be undone!"));
        box->button(button)->click();
        delete box;
    }
    QString warning() { return takeWarning(manager); }

    frmConfigManageProfile* manager = nullptr;
};

// (The refusals the terminal's profile verbs share are their test's.)
TEST_F(ProfileManagerTest, RefusalsUseTheManagersWordsAndChangeNothing) {
    add(QString());
    EXPECT_EQ(warning(), QStringLiteral("You must enter a name for the profile."));
    add(QStringLiteral("Main"));
    add(QStringLiteral("Spare"));
    EXPECT_TRUE(warning().isEmpty());
    // An existing name in other case just selects that profile.
    add(QStringLiteral("main"));
    EXPECT_TRUE(warning().isEmpty());
    EXPECT_EQ(selected(), QStringLiteral("Main"));

    // Clone and rename ask for the name; a cancelled box is the empty name.
    struct Refusal {
        void (frmConfigManageProfile::*verb)();
        QString name;
        const char* words;
    };
    const Refusal refusals[] = {
        {&frmConfigManageProfile::cmdClone_Click, QStringLiteral("x\\y"),
         "Could not clone profile, cannot contain \\ in name!"},
        {&frmConfigManageProfile::cmdClone_Click, QString(),
         "Could not clone the profile, invalid name!"},
        {&frmConfigManageProfile::cmdRename_Click, QStringLiteral("Spare"),
         "Could not rename the profile, it may already exist!"},
        {&frmConfigManageProfile::cmdRename_Click, QStringLiteral(""),
         "Could not rename the profile, invalid name!"},
    };
    for (const Refusal& r : refusals) {
        select(QStringLiteral("Main"));
        (manager->*r.verb)();
        answer(r.name);
        EXPECT_EQ(warning(), QLatin1String(r.words)) << r.words;
    }
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("Main"), QStringLiteral("Spare")}));

    // A clone carries the values; "No" keeps a profile.
    RegistryWrapper::instance().WriteSTRING(ProfileLifecycle::ProfilesKey() + "Main",
                                            QStringLiteral("Password"), QStringLiteral("pw"));
    select(QStringLiteral("Main"));
    manager->cmdClone_Click();
    answer(QStringLiteral("Copy"));
    EXPECT_EQ(stored(QStringLiteral("Copy"), "Password"), QStringLiteral("pw"));
    select(QStringLiteral("Copy"));
    manager->cmdDel_Click();
    confirmDelete(QMessageBox::No);
    EXPECT_EQ(listed().size(), 3);
}

TEST_F(ProfileManagerTest, ARenamedSlotKeepsItsConnectionAndADeletedOneIsUnloaded) {
    add(QStringLiteral("Live"));
    add(QStringLiteral("Doomed"));
    const int live = onlineSlot(QStringLiteral("Live"));
    const int doomed = onlineSlot(QStringLiteral("Doomed"));
    SlotTable::instance().SelectBot(live);

    select(QStringLiteral("Live"));
    manager->cmdRename_Click();
    answer(QStringLiteral("Alive"));
    EXPECT_TRUE(warning().isEmpty());
    EXPECT_EQ(selected(), QStringLiteral("Alive"));
    EXPECT_EQ(Bots(live).Profile(), QStringLiteral("Alive"));
    EXPECT_TRUE(Bots(live).Online());
    EXPECT_EQ(wsBNET(live).State(), 7);
    // Its settings are read under the new name from now on.
    RegistryWrapper::instance().WriteSTRING(ProfileLifecycle::ProfilesKey() + "Alive",
                                            QStringLiteral("Trigger"), QStringLiteral("#"));
    EXPECT_EQ(Bots(live).Config.Trigger(), QStringLiteral("#"));
    // The tab follows at once, and the add menu offers no stale name.
    EXPECT_TRUE(window->tabBar()->tabProfiles().contains(QStringLiteral("Alive")));
    EXPECT_FALSE(window->tabBar()->tabProfiles().contains(QStringLiteral("Live")));

    // The same name in other case is no refusal; the store keeps its
    // spelling, and the menu of profiles to load still knows it is loaded.
    manager->cmdRename_Click();
    answer(QStringLiteral("ALIVE"));
    EXPECT_TRUE(warning().isEmpty());
    EXPECT_EQ(Bots(live).Profile(), QStringLiteral("ALIVE"));
    EXPECT_EQ(row(window->mnuProfiles(), QStringLiteral("Alive")), nullptr);

    select(QStringLiteral("Doomed"));
    manager->cmdDel_Click();
    confirmDelete(QMessageBox::Yes);
    EXPECT_FALSE(Bots(doomed).IsLoaded);
    EXPECT_EQ(wsBNET(doomed).State(), 0);
    EXPECT_EQ(listed(), QStringList{QStringLiteral("Alive")});
    EXPECT_FALSE(window->tabBar()->tabProfiles().contains(QStringLiteral("Doomed")));
    // The slot is handed out again.
    EXPECT_EQ(SlotTable::instance().LoadProfile(QStringLiteral("ALIVE2")), doomed);
}

TEST_F(ProfileManagerTest, ListManagersAddEditAndRemoveEntries) {
    frmConfigManage lists(window.get());
    lists.Manager(OfferedList::Channels);
    lists.show();
    for (const char* text : {"Op Home", "Clan Test", "Nest\\Inner"}) {
        lists.Text1()->setText(QLatin1String(text));
        QTest::keyClick(lists.Text1(), Qt::Key_Return);
    }
    // A backslash nests: the list shows the first part.
    EXPECT_EQ(OfferedList::entries(OfferedList::Channels),
              (QStringList{"Clan Test", "Nest", "Op Home"}));
    EXPECT_EQ(lists.List1()->count(), 3);
    lists.List1()->setCurrentRow(2);
    lists.cmdEdit_Click();
    EXPECT_EQ(lists.Text1()->text(), QStringLiteral("Op Home"));
    EXPECT_EQ(lists.List1()->count(), 2);
    lists.List1()->setCurrentRow(0);
    lists.cmdDel_Click();
    EXPECT_EQ(OfferedList::entries(OfferedList::Channels), QStringList{"Nest"});

    frmConfigManageIdles idles(window.get());
    idles.show();
    idles.Text1()->setText(QStringLiteral("a\\b"));
    idles.cmdAdd_Click();
    EXPECT_EQ(takeWarning(&idles), QStringLiteral("String cannot contain a backslash."));
    EXPECT_TRUE(OfferedList::entries(OfferedList::IdleMessages).isEmpty());
    EXPECT_FALSE(idles.variables()->isVisible());
    idles.cmdExpand()->click();
    EXPECT_TRUE(idles.variables()->isVisible());
    EXPECT_EQ(idles.cmdExpand()->toolTip(), QStringLiteral("Hide Variables"));
}

} // namespace
