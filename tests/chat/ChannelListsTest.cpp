#include "platform/ChunkedList.h"
#include "platform/ListModel.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

// The run-based list against a plain vector, through enough inserts and
// erases that runs split, empty and go. (Its search is the user look-up's,
// checked against a walk of the channel in the bot element's test.)
TEST(ChannelListsTest, RunsHoldTheSameSequenceAsAVector) {
    std::mt19937 rng(1);
    ChunkedList<int> runs;
    std::vector<int> plain;
    for (int step = 0; step < 200000; ++step) {
        const unsigned roll = rng() % 3;
        if (roll == 0 || plain.empty()) {
            const size_t at = rng() % 2 ? plain.size() : rng() % (plain.size() + 1);
            const int value = int(rng());
            runs.insert(at, value);
            plain.insert(plain.begin() + std::ptrdiff_t(at), value);
        } else if (roll == 1) {
            const size_t at = rng() % plain.size();
            runs.erase(at);
            plain.erase(plain.begin() + std::ptrdiff_t(at));
        } else {
            const size_t at = rng() % plain.size();
            ASSERT_EQ(runs[at], plain[at]) << "step " << step;
        }
        ASSERT_EQ(runs.size(), plain.size());
    }
    EXPECT_TRUE(std::equal(runs.begin(), runs.end(), plain.begin(), plain.end()));
}

// Rows found by key stay right as items go in at the top, in one spot in the
// middle (until the labels there run out and are dealt again) and go out.
TEST(ChannelListsTest, RowsByKeyFollowInsertsAndRemovals) {
    ListModel list;
    const auto item = [](const QString& key) {
        ListItem i = ListItem::withText(key);
        i.key = key;
        return i;
    };
    for (int i = 0; i < 300; ++i)
        list.add(item(QStringLiteral("u%1").arg(i)));
    list.add(item(QStringLiteral("op")), 1);
    for (int i = 0; i < 40; ++i)
        list.add(item(QStringLiteral("m%1").arg(i)), 100);
    list.add(item(QStringLiteral("u5")), 50); // a second item of one key

    for (int row = 1; row <= list.count(); ++row) {
        const std::vector<int> rows = list.rowsWithKey(list.item(row).key);
        ASSERT_NE(std::find(rows.begin(), rows.end(), row), rows.end()) << row;
    }
    EXPECT_EQ(list.rowsWithKey(QStringLiteral("op")), std::vector<int>{1});
    const std::vector<int> twice = list.rowsWithKey(QStringLiteral("u5"));
    ASSERT_EQ(twice.size(), 2u);
    EXPECT_GT(twice[0], twice[1]) << "the last row first";
    for (int row : twice)
        list.removeAt(row);
    EXPECT_EQ(list.keyCount(QStringLiteral("u5")), 0);
    EXPECT_EQ(list.count(), 340);
    EXPECT_EQ(list.item(list.rowsWithKey(QStringLiteral("u299"))[0]).text, QStringLiteral("u299"));
}
