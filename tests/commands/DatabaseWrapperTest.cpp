#include "commands/DatabaseWrapper.h"

#include "commands/DatabaseManager.h"
#include "common/ChatFixture.h"
#include "platform/ChatDocument.h"
#include "presentation/ChatWriter.h"
#include "session/ProfileLifecycle.h"

class DatabaseWrapperTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        killTree(DatabaseWrapper::DatabasesKey());
        killTree(ProfileLifecycle::ProfilesKey().chopped(1));
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

    static int loaded(const QString& profile) {
        ProfileLifecycle::CreateProfile(profile);
        return SlotTable::instance().LoadProfile(profile);
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

// (The panel's and the terminal's ways through the manager, with a loaded
// profile that sees a rank at once, are the control panel's and the verbs'
// tests.)
TEST_F(DatabaseWrapperTest, ManagerNamesAndRanksOutsideTheRulesAreRefused) {
    using namespace DatabaseManager;
    EXPECT_FALSE(CreateDatabase(QStringLiteral("a\\b")).ok);
    ASSERT_TRUE(CreateDatabase(QStringLiteral("Main")).ok);
    EXPECT_TRUE(CreateDatabase(QStringLiteral("main")).existed);
    EXPECT_EQ(ListDatabases(), QStringList{QStringLiteral("Main")});

    EXPECT_EQ(SetUserRank({}, QStringLiteral("bob"), 10).warning,
              QStringLiteral("You must select a database profile!"));
    for (qint32 wrong : {0, 101})
        EXPECT_EQ(SetUserRank(QStringLiteral("Main"), QStringLiteral("bob"), wrong).warning,
                  QStringLiteral("Flags value must be between 1 - 100!"));
    EXPECT_FALSE(SetUserRank(QStringLiteral("Gone"), QStringLiteral("bob"), 10).ok);
    ASSERT_TRUE(SetUserRank(QStringLiteral("Main"), QStringLiteral("Bob"), 1).ok);
    EXPECT_FALSE(DeleteUser(QStringLiteral("Main"), QStringLiteral("nobody")).ok);
    EXPECT_TRUE(DeleteUser(QStringLiteral("main"), QStringLiteral("Bob")).ok);
    EXPECT_TRUE(ListUsers(QStringLiteral("Main")).isEmpty());
}

// A binding reaches profiles that are only stored, and a release or a
// deletion takes away only the binding it names.
TEST_F(DatabaseWrapperTest, ManagerBindingsReachStoredProfilesAndGoOnlyWithTheirDatabase) {
    using namespace DatabaseManager;
    ProfileLifecycle::CreateProfile(QStringLiteral("resting"));
    const int live = loaded(QStringLiteral("live"));
    const int other = loaded(QStringLiteral("other"));
    CreateDatabase(QStringLiteral("Doomed"));
    CreateDatabase(QStringLiteral("Kept"));
    SetUserRank(QStringLiteral("Doomed"), QStringLiteral("alice"), 50);

    EXPECT_FALSE(BindDatabase(QStringLiteral("nobody"), QStringLiteral("Kept")).ok);
    EXPECT_FALSE(BindDatabase(QStringLiteral("resting"), QStringLiteral("missing")).ok);
    ASSERT_TRUE(BindDatabase(QStringLiteral("resting"), QStringLiteral("doomed")).ok);
    EXPECT_EQ(BoundDatabase(QStringLiteral("resting")), QStringLiteral("Doomed"));
    ASSERT_TRUE(BindDatabase(QStringLiteral("LIVE"), QStringLiteral("Doomed")).ok);
    ASSERT_TRUE(BindDatabase(QStringLiteral("other"), QStringLiteral("Kept")).ok);

    EXPECT_TRUE(ReleaseDatabase(QStringLiteral("live"), QStringLiteral("Kept")).ok);
    EXPECT_EQ(Bots(live).Database(), QStringLiteral("Doomed")) << "bound elsewhere: untouched";

    EXPECT_FALSE(DeleteDatabase(QStringLiteral("never")).ok);
    ASSERT_TRUE(DeleteDatabase(QStringLiteral("doomed")).ok);
    EXPECT_EQ(ListDatabases(), QStringList{QStringLiteral("Kept")});
    EXPECT_TRUE(BoundDatabase(QStringLiteral("resting")).isEmpty());
    EXPECT_TRUE(Bots(live).Database().isEmpty());
    EXPECT_EQ(Bots(other).Database(), QStringLiteral("Kept"));
    EXPECT_TRUE(ReleaseDatabase(QStringLiteral("other"), QStringLiteral("kept")).ok);
    EXPECT_TRUE(Bots(other).Database().isEmpty());
    // Made again, it starts empty: the old users went with it.
    CreateDatabase(QStringLiteral("Doomed"));
    EXPECT_TRUE(ListUsers(QStringLiteral("Doomed")).isEmpty());
}
