#include "common/SlotFixture.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "session/LogonRecord.h"

#include <QSignalSpy>

class SlotTableTest : public SlotFixture {
protected:
    SlotTable& table() { return SlotTable::instance(); }
};

TEST_F(SlotTableTest, LoadingAfterAnUnloadReusesTheLowestFreeSlot) {
    EXPECT_EQ(table().LoadProfile("a"), 1);
    EXPECT_EQ(table().LoadProfile("b"), 2);
    EXPECT_EQ(table().LoadProfile("c"), 3);
    ChatDocument* viewOfSlot2 = &rtbChat(2);
    table().UnloadProfile("b");
    table().UnloadProfile("a");
    EXPECT_EQ(table().highestIndex(), 3);

    QSignalSpy created(&table(), &SlotTable::slotCreated);
    EXPECT_EQ(table().LoadProfile("d"), 1);
    EXPECT_EQ(table().LoadProfile("e"), 2);
    EXPECT_EQ(created.count(), 0);
    EXPECT_EQ(&rtbChat(2), viewOfSlot2);
    EXPECT_EQ(table().LoadProfile("f"), 4);
    EXPECT_EQ(created.count(), 1);
    EXPECT_EQ(Bots(2).Profile(), QStringLiteral("e"));
    EXPECT_EQ(Bots(4).Index(), 4);
    EXPECT_EQ(rtbChat(4).Tag, QStringLiteral("f"));

    // Loading empties what the reused slot showed.
    const int i = 2;
    rtbChat(i).append(u"old text", {});
    lvUsers(i).add(ListItem::withText(QStringLiteral("someone")));
    Bots(i).userAdd("someone", 0, 0, {}, 0);
    table().UnloadProfile("e");
    EXPECT_EQ(table().LoadProfile("g"), i);
    EXPECT_TRUE(rtbChat(i).isEmpty());
    EXPECT_EQ(lvUsers(i).count(), 0);
    EXPECT_TRUE(Bots(i).Users.empty());
    EXPECT_TRUE(Bots(i).IsLoaded);
    EXPECT_FALSE(Bots(i).Online());
}

// Selecting a slot clears its unseen-talk mark; unloading the active one shows the first
// loaded one; an unknown profile is a warning that changes nothing.
TEST_F(SlotTableTest, UnloadingTheActiveSlotShowsTheFirstLoadedOneAndKeepsTheArrays) {
    table().LoadProfile("a");
    table().LoadProfile("b");
    table().LoadProfile("c");
    Bots(1).IsActive = true;
    Bots(1).LastActive = 55;
    table().SelectBot(1);
    EXPECT_EQ(table().CurrentIndex(), 1);
    EXPECT_FALSE(Bots(1).IsActive);
    EXPECT_EQ(Bots(1).LastActive, 0u);

    QSignalSpy box(&table(), &SlotTable::messageBox);
    EXPECT_FALSE(table().UnloadProfile("zzz"));
    ASSERT_EQ(box.count(), 1);
    EXPECT_EQ(box[0][1].toString(), QStringLiteral("Error occurred, zzz was not found in memory."));
    EXPECT_TRUE(Bots(1).IsLoaded);
    EXPECT_EQ(table().CurrentIndex(), 1);

    table().UnloadProfile("a");
    EXPECT_EQ(table().CurrentIndex(), 2);
    EXPECT_EQ(table().highestIndex(), 3);
    EXPECT_FALSE(Bots(1).IsLoaded);
    EXPECT_TRUE(Bots(1).Profile().isEmpty());
}

TEST_F(SlotTableTest, TheProfilesMenuOffersStoredProfilesNotLoaded) {
    for (const char* name : {"menu-a", "menu-b", "menu-c"}) {
        ConfigWrapper config;
        config.Profile = QString::fromLatin1(name);
        config.setAccount(QStringLiteral("x"));
    }
    table().LoadProfile("menu-b");
    const QStringList offered = table().unloadedProfiles();
    EXPECT_TRUE(offered.contains("menu-a"));
    EXPECT_FALSE(offered.contains("menu-b"));
    EXPECT_TRUE(offered.contains("menu-c"));
}
