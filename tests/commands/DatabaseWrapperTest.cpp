#include "commands/DatabaseWrapper.h"

#include "common/ChatFixture.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"

class DatabaseWrapperTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        killTree(DatabaseWrapper::DatabasesKey());
        slot = SlotTable::instance().LoadProfile(QStringLiteral("alpha"));
        Bots(slot).setDatabase(QStringLiteral("Main"));
    }

    // A user written as the control panel does, rank 0 included.
    static void store(const QString& name, qint32 flags) {
        RegistryWrapper::instance().WriteDWORD(DatabaseWrapper::DatabasesKey() + "\\Main\\" + name,
                                               "Flags", flags);
    }
    std::pair<QString, qint32> grab(const QString& name) {
        QString user = name;
        qint32 rank = -1;
        db.GrabRank(slot, user, rank);
        return {user, rank};
    }
    std::pair<QString, qint32> grabAt(int position) {
        QString user = QStringLiteral("junk");
        qint32 rank = -1;
        db.GrabRankByIndex(slot, position, user, rank);
        return {user, rank};
    }

    DatabaseWrapper db;
    int slot = 0;
};

using Found = std::pair<QString, qint32>;

TEST_F(DatabaseWrapperTest, TheBindingIsReadFromTheProfileKeyAndAnnounced) {
    const QString key = Bots(slot).Config.profileKey();
    EXPECT_EQ(RegistryWrapper::instance().ReadSTRING(key, "Database"), QStringLiteral("Main"));
    const QString line = QStringLiteral("Binded database 'Main' to this profile.");
    ASSERT_TRUE(rtbChat(slot).text().contains(line));
    EXPECT_EQ(rtbChat(slot).formatAt(rtbChat(slot).text().indexOf(line)).color,
              StatusColor(Status::Information));

    RegistryWrapper::instance().WriteSTRING(key, "Database", "Other");
    EXPECT_EQ(Bots(slot).Database(), QStringLiteral("Other")) << "no copy is kept";

    const int before = rtbChat(0).length();
    Bots(0).setDatabase(QStringLiteral("Main")); // the console has no profile
    EXPECT_TRUE(Bots(0).Database().isEmpty());
    EXPECT_EQ(rtbChat(0).length(), before);
}

TEST_F(DatabaseWrapperTest, GrabRankMatchesAccountsAndGivesTheStoredSpelling) {
    store("Bob", 20);
    store("*Carl", 30);
    EXPECT_EQ(grab("bob"), Found("Bob", 20));
    EXPECT_EQ(grab("Hero*BOB"), Found("Bob", 20));
    EXPECT_EQ(grab("carl"), Found("*Carl", 30));
    EXPECT_EQ(grab("nobody"), Found("", 0));

    // Keys come in the store's order; the last of several matches decides,
    // even when it has no rank.
    store("Dan", 40);
    store("Mage*Dan", 0);
    EXPECT_EQ(grab("dan"), Found("", 0));
    store("Mage*Dan", 50);
    EXPECT_EQ(grab("dan"), Found("Mage*Dan", 50));

    Bots(slot).setDatabase(QString());
    EXPECT_EQ(grab("bob"), Found("", 0)) << "no database knows nobody";
    Bots(slot).setDatabase(QStringLiteral("Deleted"));
    EXPECT_EQ(grab("bob"), Found("", 0));
}

TEST_F(DatabaseWrapperTest, AddUserTakesNewUsersOnlyAndRemoveUserTheExactKey) {
    // (Rank 0 and an existing user are refused in the ADD command's test.)
    EXPECT_FALSE(db.AddUser(slot, "high", 101));
    EXPECT_EQ(db.Count(slot), 0) << "nothing written";
    EXPECT_TRUE(db.AddUser(slot, "Top", 100));
    EXPECT_TRUE(db.AddUser(slot, "Bob", 10));
    store("Ghost", 0);
    EXPECT_TRUE(db.AddUser(slot, "ghost", 5)) << "a key without rank is no user";
    EXPECT_EQ(grab("ghost"), Found("Ghost", 5));

    EXPECT_FALSE(db.RemoveUser(slot, "Hero*Bob"));
    EXPECT_FALSE(db.RemoveUser(slot, "")) << "never the database itself";
    EXPECT_TRUE(db.RemoveUser(slot, "bob"));
    EXPECT_FALSE(db.RemoveUser(slot, "bob"));
    EXPECT_EQ(grab("bob"), Found("", 0));

    Bots(slot).setDatabase(QString());
    EXPECT_FALSE(db.AddUser(slot, "new", 10));
    EXPECT_FALSE(db.RemoveUser(slot, "Top"));
}

TEST_F(DatabaseWrapperTest, CountIsTheHighestPositionOfGrabRankByIndex) {
    EXPECT_EQ(db.Count(slot), 0);
    store("Alice", 30);
    EXPECT_EQ(db.Count(slot), 0);
    EXPECT_EQ(grabAt(0), Found("Alice", 30));
    store("Zed", 0);
    store("Bob", 20);
    EXPECT_EQ(db.Count(slot), 2);
    EXPECT_EQ(grabAt(1), Found("Bob", 20));
    EXPECT_EQ(grabAt(2), Found("", 0)) << "a key without rank";
}
