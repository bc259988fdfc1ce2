#include "commands/DatabaseManager.h"

#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"
#include "common/ChatFixture.h"
#include "session/ProfileLifecycle.h"

// (The panel's and the terminal's ways through these, with a loaded profile
// that sees a rank at once, are the control panel's and the verbs' tests.)
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
};

TEST_F(DatabaseManagerTest, NamesAndRanksOutsideTheRulesAreRefused) {
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
TEST_F(DatabaseManagerTest, BindingsReachStoredProfilesAndGoOnlyWithTheirDatabase) {
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
