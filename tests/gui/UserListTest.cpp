#include "WindowFixture.h"
#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "gui/SendBox.h"
#include "gui/UserListView.h"
#include "platform/ListModel.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QToolTip>

namespace {

class UserListTest : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        slot = onlineSlot(QStringLiteral("Watcher"));
        SlotTable::instance().SelectBot(slot);
        list = window->userList();
    }
    // The names in the order the view shows them.
    QStringList shownNames() const {
        QStringList names;
        const QAbstractItemModel* model = list->model();
        for (int row = 0; row < model->rowCount(); ++row)
            names << model->index(row, 0).data().toString();
        return names;
    }
    void select(int row) { list->setCurrentIndex(list->model()->index(row, 0)); }
    int slot = 0;
    UserListView* list = nullptr;
};

TEST_F(UserListTest, OperatorsStandOnTopInReverseOrderOfArrival) {
    event(slot, 1, QStringLiteral("first"), QStringLiteral("RATS 0"));
    event(slot, 2, QStringLiteral("a"), QStringLiteral("RATS 0"), 0x02);
    event(slot, 2, QStringLiteral("plain"), QStringLiteral("PXES 0"));
    event(slot, 2, QStringLiteral("b"), QStringLiteral("RATS 0"), 0x02);
    event(slot, 2, QStringLiteral("c"), QStringLiteral("3RAW 0"), 0x02);
    event(slot, 2, QStringLiteral("last"), QStringLiteral("RATS 0"));
    EXPECT_EQ(shownNames(), (QStringList{"c", "b", "a", "first", "plain", "last"}));
    // Operators wear their mark instead of the product; the others their product.
    const QAbstractItemModel* model = list->model();
    EXPECT_EQ(model->index(0, 0).data(ListModel::IconKeyRole).toString(),
              QStringLiteral("Operator"));
    EXPECT_EQ(model->index(3, 0).data(ListModel::IconKeyRole).toString(), QStringLiteral("STAR"));
    EXPECT_EQ(model->index(4, 0).data(ListModel::IconKeyRole).toString(), QStringLiteral("SEXP"));
    EXPECT_EQ(model->index(4, 1).data().toString(), QStringLiteral("20"));
    EXPECT_EQ(model->index(4, 1).data(ListModel::IconKeyRole).toString(), QStringLiteral("Green"));
    // Another slot's list is not shown.
    SlotTable::instance().SelectBot(0);
    EXPECT_TRUE(shownNames().isEmpty());
}

TEST_F(UserListTest, KeysAndTheContextMenuActOnTheSelectedUser) {
    // Nothing to act on: no menu, and Ctrl+C leaves the clipboard alone.
    EXPECT_EQ(list->contextMenu(), nullptr);
    QApplication::clipboard()->setText(QStringLiteral("untouched"));
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("untouched"));
    event(slot, 1, QStringLiteral("loud"), QStringLiteral("RATS 0"));
    event(slot, 1, QStringLiteral("hushed"), QStringLiteral("RATS 0"), 0x20);
    select(0);
    QMenu* menu = list->contextMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->defaultAction(), menu->findChild<QAction*>(QStringLiteral("mnuWhisperUser")));
    EXPECT_EQ(menu->findChild<QAction*>(QStringLiteral("mnuSquelchUser"))->text(),
              QStringLiteral("Squelch"));
    for (const char* row : {"mnuBanUser", "mnuDesignateUser", "mnuWhois"})
        menu->findChild<QAction*>(QLatin1String(row))->trigger();
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"/ban loud", "/designate loud", "/whois loud"}));

    select(1);
    menu = list->contextMenu();
    QAction* squelch = menu->findChild<QAction*>(QStringLiteral("mnuSquelchUser"));
    EXPECT_EQ(squelch->text(), QStringLiteral("Unsquelch"));
    squelch->trigger();
    QMenu* stats = menu->findChild<QMenu*>(QStringLiteral("mnuStatsUser"));
    ASSERT_NE(stats, nullptr);
    ASSERT_EQ(stats->actions().size(), 7);
    stats->actions().at(5)->trigger();
    // The menu's lines take the keyboard's road, so the bot's own UNSQUELCH
    // command is what sends the second.
    EXPECT_EQ(Bots(slot).Queue, (QStringList{"/ban loud", "/designate loud", "/whois loud",
                                             "/unignore hushed", "/stats hushed WAR3"}));
    menu->defaultAction()->trigger();
    EXPECT_EQ(window->cboSend()->currentText(), QStringLiteral("/w hushed "));

    select(0);
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("loud"));
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(window->cboSend()->currentText(), QStringLiteral("/w loud "));
}

TEST_F(UserListTest, TooltipLinesTellWhatIsKnownOfTheUser) {
    CreateGroup(QStringLiteral("Mods"), {QStringLiteral("clanner")}, 0xFFFFFF,
                QStringLiteral("Mods"));
    event(slot, 1, QStringLiteral("alice"), QStringLiteral("RATS 1500 0 12 0 0 0 0 0 RATS"), 0, 20);
    event(slot, 1, QStringLiteral("clanner"), QStringLiteral("PX3W 3H3W 0 NALC"), 0x02, 250);
    event(slot, 1, QStringLiteral("spawn"), QStringLiteral("RATS"), 0x10, 0);
    // The lines above the uptime, which every user has last.
    const std::pair<int, QStringList> tips[] = {
        {1,
         {"alice", "Flags: 0x00   (Normal)", "Ping: 20ms   (Excellent, Green)",
          "Product: StarCraft", "Stats: 12 wins, rating of 1500"}},
        {0,
         {"clanner", "Member of: Clan CLAN", "Flags: 0x02   (Mod)", "Group: Mods",
          "Ping: 250ms   (Low, Lime)", "Product: WarCraft III The Frozen Throne",
          "Stats: Sorceress Icon"}},
        // No clan, no group, no statistics, and no empty line in their place.
        {2, {"spawn", "Flags: 0x10   (UDP)", "Ping: 0ms   (Spoofed, Clear)", "Product: StarCraft"}},
    };
    for (const auto& [item, lines] : tips) {
        QStringList shown = list->tooltipFor(item).split(u'\n');
        SCOPED_TRACE(shown.join(u'|').toStdString());
        EXPECT_TRUE(shown.takeLast().startsWith(QStringLiteral("Uptime: ")));
        EXPECT_EQ(shown, lines);
    }
    DeleteGroup(QStringLiteral("Mods"));
}

TEST_F(UserListTest, TheTooltipIsBuiltOncePerItemUnderThePointer) {
    event(slot, 1, QStringLiteral("alice"), QStringLiteral("RATS 0 0 0"));
    event(slot, 1, QStringLiteral("bob"), QStringLiteral("RATS 0 0 0"));
    QWidget* viewport = list->viewport();
    const QRect first = list->visualRect(list->model()->index(0, 0));
    QTest::mouseMove(viewport, first.center());
    EXPECT_EQ(list->tooltipBuilds(), 1);
    EXPECT_EQ(Bots(slot).HoveredItem, 1);
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_TRUE(QToolTip::text().startsWith(QStringLiteral("<b>alice</b><br>Flags:")));
    QTest::mouseMove(viewport, first.center() + QPoint(5, 1));
    EXPECT_EQ(list->tooltipBuilds(), 1) << "the same item builds nothing";
    QTest::mouseMove(viewport, list->visualRect(list->model()->index(1, 0)).center());
    EXPECT_EQ(list->tooltipBuilds(), 2);
    EXPECT_EQ(Bots(slot).HoveredItem, 2);
    QTest::mouseMove(viewport, QPoint(first.center().x(), viewport->height() - 2));
    EXPECT_EQ(Bots(slot).HoveredItem, 0);
    for (int wait = 0; wait < 20 && QToolTip::isVisible(); ++wait)
        QTest::qWait(50);
    EXPECT_FALSE(QToolTip::isVisible());
}

// The menu blocks the user and opens the editors; its alias and group rows
// and an edit of the name in place move the user between aliases and groups.
TEST_F(UserListTest, TheMenuAndAnEditInPlaceMoveTheUser) {
    CreateAlias(QStringLiteral("Crew"), {QString()});
    CreateGroup(QStringLiteral("Staff"), {QString()}, 0xFFFFFF, QStringLiteral("Staff"));
    event(slot, 1, QStringLiteral("bob"), QStringLiteral("RATS 0 0 0"));
    select(0);
    const auto action = [this](const char* name) {
        return list->contextMenu()->findChild<QAction*>(QLatin1String(name));
    };
    ASSERT_EQ(action("mnuBlockUser")->text(), QStringLiteral("Block"));
    action("mnuBlockUser")->trigger();
    EXPECT_TRUE(IsBlocked(QStringLiteral("bob")));
    ASSERT_EQ(action("mnuBlockUser")->text(), QStringLiteral("Unblock"));
    action("mnuBlockUser")->trigger();
    EXPECT_FALSE(IsBlocked(QStringLiteral("bob")));
    QList<int> rows;
    QObject::connect(window.get(), &frmBot::controlPanelRequested,
                     [&rows](int row) { rows << row; });
    action("mnuEditAliases")->trigger();
    action("mnuEditGroups")->trigger();
    EXPECT_EQ(rows, (QList<int>{11, 15}));

    QMenu* alias = list->contextMenu()->findChild<QMenu*>(QStringLiteral("mnuAlias"));
    ASSERT_NE(alias, nullptr);
    pick(alias, QStringLiteral("Crew"));
    EXPECT_EQ(FindAlias(QStringLiteral("bob")), QStringLiteral("Crew"));
    EXPECT_EQ(shownNames(), QStringList{QStringLiteral("Crew")}) << "the list shows the alias";

    select(0);
    QMenu* group = list->contextMenu()->findChild<QMenu*>(QStringLiteral("mnuGroup"));
    ASSERT_NE(group, nullptr);
    group->actions().last()->trigger();
    EXPECT_EQ(FindGroup(QStringLiteral("bob")), QStringLiteral("Staff"));

    select(0);
    action("mnuNoAlias")->trigger();
    EXPECT_TRUE(FindAlias(QStringLiteral("bob")).isEmpty());
    EXPECT_EQ(shownNames(), QStringList{QStringLiteral("bob")});

    // F2 edits the name in place; a backslash is refused and changes nothing.
    QTest::keyClick(list, Qt::Key_F2);
    auto* editor = list->findChild<QLineEdit*>(QStringLiteral("lvUsersLabelEdit"));
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("a\\b"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(rtbChat(slot).text().contains("Name cannot contain backslashes."));
    EXPECT_EQ(AliasGroupEditor::AliasNames(), QStringList{QStringLiteral("Crew")});
    // A click on the chosen name opens the editor once no double click came.
    const QPoint name = list->visualRect(list->model()->index(0, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, name);
    QTRY_VERIFY(list->findChild<QLineEdit*>(QStringLiteral("lvUsersLabelEdit")));
    auto* second = list->findChild<QLineEdit*>(QStringLiteral("lvUsersLabelEdit"));
    second->setText(QStringLiteral("Buddy"));
    QTest::keyClick(second, Qt::Key_Return);
    EXPECT_EQ(FindAlias(QStringLiteral("bob")), QStringLiteral("Buddy"));
    EXPECT_EQ(shownNames(), QStringList{QStringLiteral("Buddy")});
    for (const char* made : {"Crew", "Buddy"})
        DeleteAlias(QLatin1String(made));
    DeleteGroup(QStringLiteral("Staff"));
}

} // namespace
