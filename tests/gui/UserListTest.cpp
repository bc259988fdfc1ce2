#include "WindowFixture.h"
#include "gui/SendBox.h"
#include "gui/UserListView.h"
#include "platform/ListModel.h"

#include <QClipboard>
#include <QMenu>
#include <QTest>

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
    QAction* menuAction(QMenu* menu, const QString& name) {
        for (QAction* action : menu->actions()) {
            if (action->objectName() == name) return action;
        }
        return nullptr;
    }
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

TEST_F(UserListTest, KeysWhisperAndCopyTheSelectedUser) {
    // Nothing to act on: Ctrl+C leaves the clipboard alone.
    QApplication::clipboard()->setText(QStringLiteral("untouched"));
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("untouched"));

    event(slot, 1, QStringLiteral("alice"), QStringLiteral("RATS 0"));
    event(slot, 1, QStringLiteral("bob"), QStringLiteral("RATS 0"));
    select(1);
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("bob"));
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(window->cboSend()->currentText(), QStringLiteral("/w bob "));
}

TEST_F(UserListTest, TheContextMenuOffersWhatCanBeDoneToTheUser) {
    EXPECT_EQ(list->contextMenu(), nullptr) << "no selection, no menu";
    event(slot, 1, QStringLiteral("loud"), QStringLiteral("RATS 0"));
    event(slot, 1, QStringLiteral("hushed"), QStringLiteral("RATS 0"), 0x20);
    select(0);
    QMenu* menu = list->contextMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->defaultAction(), menuAction(menu, QStringLiteral("mnuWhisperUser")));
    EXPECT_EQ(menuAction(menu, QStringLiteral("mnuSquelchUser"))->text(),
              QStringLiteral("Squelch"));
    menuAction(menu, QStringLiteral("mnuBanUser"))->trigger();
    EXPECT_EQ(Bots(slot).Queue, QStringList{QStringLiteral("/ban loud")});

    select(1);
    menu = list->contextMenu();
    QAction* squelch = menuAction(menu, QStringLiteral("mnuSquelchUser"));
    EXPECT_EQ(squelch->text(), QStringLiteral("Unsquelch"));
    squelch->trigger();
    QMenu* stats = menu->findChild<QMenu*>(QStringLiteral("mnuStatsUser"));
    ASSERT_NE(stats, nullptr);
    ASSERT_EQ(stats->actions().size(), 7);
    stats->actions().at(5)->trigger();
    EXPECT_EQ(Bots(slot).Queue,
              (QStringList{"/ban loud", "/unsquelch hushed", "/stats hushed WAR3"}));
    menu->defaultAction()->trigger();
    EXPECT_EQ(window->cboSend()->currentText(), QStringLiteral("/w hushed "));
}

} // namespace
