#include "commands/DatabaseManager.h"

#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"
#include "common/ChatFixture.h"
#include "session/ProfileLifecycle.h"

class DatabaseManagerTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        killTree(DatabaseWrapper::DatabasesKey());
        killTree(ProfileLifecycle::ProfilesKey().chopped(1));
    }
    int loaded(const QString& profile) {
        ProfileLifecycle::CreateProfile(profile);
        return SlotTable::instance().LoadProfile(profile);
    }
    qint32 rank(int slot, const QString& name) {
        QString user = name;
        qint32 found = 0;
        DatabaseWrapper().GrabRank(slot, user, found);
        return found;
    }
};

TEST_F(DatabaseManagerTest, CreatingRefusesEmptyNamesAndKeepsAnExistingDatabase) {
    using namespace DatabaseManager;
    EXPECT_EQ(CreateDatabase({}).warning,
              QStringLiteral("You must enter a name for the database!"));
    EXPECT_FALSE(CreateDatabase(QStringLiteral("a\\b")).ok);
    EXPECT_TRUE(ListDatabases().isEmpty());

    EXPECT_EQ(SetUserRank(QStringLiteral("Main"), QStringLiteral("bob"), 10).warning,
              QStringLiteral("There are no database profiles created!"));
    const ManageOutcome made = CreateDatabase(QStringLiteral("Main"));
    EXPECT_TRUE(made.ok && !made.existed);
    EXPECT_TRUE(CreateDatabase(QStringLiteral("main")).existed);
    EXPECT_EQ(ListDatabases(), QStringList{QStringLiteral("Main")});

    EXPECT_EQ(SetUserRank({}, QStringLiteral("bob"), 10).warning,
              QStringLiteral("You must select a database profile!"));
    EXPECT_EQ(SetUserRank(QStringLiteral("Main"), {}, 10).warning,
              QStringLiteral("You must enter a username!"));
    for (qint32 wrong : {0, -5, 101})
        EXPECT_EQ(SetUserRank(QStringLiteral("Main"), QStringLiteral("bob"), wrong).warning,
                  QStringLiteral("Flags value must be between 1 - 100!"));
    EXPECT_FALSE(SetUserRank(QStringLiteral("Gone"), QStringLiteral("bob"), 10).ok);
}

TEST_F(DatabaseManagerTest, RanksAreOverwrittenAndSeenAtOnceByEveryBoundProfile) {
    using namespace DatabaseManager;
    const int first = loaded(QStringLiteral("one"));
    const int second = loaded(QStringLiteral("two"));
    ASSERT_TRUE(CreateDatabase(QStringLiteral("Shared")).ok);
    ASSERT_TRUE(BindDatabase(QStringLiteral("ONE"), QStringLiteral("shared")).ok);
    ASSERT_TRUE(BindDatabase(QStringLiteral("two"), QStringLiteral("Shared")).ok);
    EXPECT_TRUE(rtbChat(first).text().contains("Binded database 'Shared' to this profile."));

    ASSERT_TRUE(SetUserRank(QStringLiteral("Shared"), QStringLiteral("Bob"), 20).ok);
    ASSERT_TRUE(SetUserRank(QStringLiteral("Shared"), QStringLiteral("Bob"), 100).ok);
    EXPECT_EQ(rank(first, QStringLiteral("bob")), 100);
    EXPECT_EQ(rank(second, QStringLiteral("bob")), 100);
    const QList<DatabaseUser> users = ListUsers(QStringLiteral("Shared"));
    ASSERT_EQ(users.size(), 1);
    EXPECT_EQ(users[0].name, QStringLiteral("Bob"));

    EXPECT_FALSE(DeleteUser(QStringLiteral("Shared"), QStringLiteral("nobody")).ok);
    EXPECT_TRUE(DeleteUser(QStringLiteral("Shared"), QStringLiteral("Bob")).ok);
    EXPECT_EQ(rank(second, QStringLiteral("bob")), 0);
}

TEST_F(DatabaseManagerTest, BindingReachesStoredProfilesAndReleaseLeavesOtherBindings) {
    using namespace DatabaseManager;
    ProfileLifecycle::CreateProfile(QStringLiteral("resting"));
    const int live = loaded(QStringLiteral("live"));
    CreateDatabase(QStringLiteral("A"));
    CreateDatabase(QStringLiteral("B"));

    EXPECT_FALSE(BindDatabase(QStringLiteral("nobody"), QStringLiteral("A")).ok);
    EXPECT_FALSE(BindDatabase(QStringLiteral("resting"), QStringLiteral("missing")).ok);
    ASSERT_TRUE(BindDatabase(QStringLiteral("resting"), QStringLiteral("A")).ok);
    EXPECT_EQ(BoundDatabase(QStringLiteral("resting")), QStringLiteral("A"));

    ASSERT_TRUE(BindDatabase(QStringLiteral("live"), QStringLiteral("B")).ok);
    EXPECT_TRUE(ReleaseDatabase(QStringLiteral("live"), QStringLiteral("A")).ok);
    EXPECT_EQ(Bots(live).Database(), QStringLiteral("B")) << "bound elsewhere: untouched";
    EXPECT_TRUE(ReleaseDatabase(QStringLiteral("live"), QStringLiteral("b")).ok);
    EXPECT_TRUE(Bots(live).Database().isEmpty());
}

TEST_F(DatabaseManagerTest, DeletingADatabaseUnbindsEveryProfileThatSharedIt) {
    using namespace DatabaseManager;
    ProfileLifecycle::CreateProfile(QStringLiteral("resting"));
    const int live = loaded(QStringLiteral("live"));
    const int other = loaded(QStringLiteral("other"));
    CreateDatabase(QStringLiteral("Doomed"));
    CreateDatabase(QStringLiteral("Kept"));
    SetUserRank(QStringLiteral("Doomed"), QStringLiteral("alice"), 50);
    BindDatabase(QStringLiteral("resting"), QStringLiteral("Doomed"));
    BindDatabase(QStringLiteral("live"), QStringLiteral("Doomed"));
    BindDatabase(QStringLiteral("other"), QStringLiteral("Kept"));

    EXPECT_FALSE(DeleteDatabase(QStringLiteral("never")).ok);
    ASSERT_TRUE(DeleteDatabase(QStringLiteral("doomed")).ok);
    EXPECT_EQ(ListDatabases(), QStringList{QStringLiteral("Kept")});
    EXPECT_TRUE(BoundDatabase(QStringLiteral("resting")).isEmpty());
    EXPECT_TRUE(Bots(live).Database().isEmpty());
    EXPECT_EQ(Bots(other).Database(), QStringLiteral("Kept"));
    // Made again, it starts empty: the old users went with it.
    CreateDatabase(QStringLiteral("Doomed"));
    EXPECT_TRUE(ListUsers(QStringLiteral("Doomed")).isEmpty());
}
