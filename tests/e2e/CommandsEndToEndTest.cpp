// Three profiles of this program in one sandbox channel: a bot with a
// userbase, its ranked owner and a stranger. The owner drives the bot by talk
// and by whisper and reads its answers as any channel user would.
#include "commands/DatabaseWrapper.h"
#include "commands/MacroWrapper.h"
#include "config/Folders.h"
#include "e2e/BotFixture.h"
#include "e2e/RunningProgram.h"
#include "platform/ListModel.h"

namespace {

class CommandsEndToEnd : public BotFixture {
protected:
    void SetUp() override {
        BotFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        ASSERT_TRUE(sandbox.start());
        keeper = load(QStringLiteral("keeper"));
        owner = load(QStringLiteral("owner"));
        stranger = load(QStringLiteral("stranger"));
        Bots(keeper).Config.setTrigger(QStringLiteral("!"));
        Bots(keeper).setDatabase(QStringLiteral("e2e"));
        DatabaseWrapper().AddUser(keeper, QStringLiteral("Owner"), 100);
        for (int i : {keeper, owner, stranger})
            SlotTable::instance().ConnectBot(i);
        ASSERT_TRUE(waitFor(
            [&] {
                return lvUsers(keeper).count() == 3 && lvUsers(owner).count() == 3 &&
                       lvUsers(stranger).count() == 3;
            },
            30000));
    }

    int load(const QString& account) {
        return sandbox.loadProfile(account, QStringLiteral("Commands"));
    }

    int keeper = 0;
    int owner = 0;
    int stranger = 0;
};

} // namespace

TEST_F(CommandsEndToEnd, RankedUsersCommandStrangersGetSilence) {
    Bots(owner).Queue << QStringLiteral("!ver");
    ASSERT_TRUE(saw(owner, QStringLiteral("Corvantide v")));

    // A whispered command answers in the channel.
    Bots(owner).Queue << QStringLiteral("/w keeper !say heard you whisper");
    ASSERT_TRUE(saw(owner, QStringLiteral("heard you whisper")));

    // The stranger's command and question go unanswered; the owner's
    // question that follows is answered, so the silence was no delay.
    Bots(stranger).Queue << QStringLiteral("!say I am in charge now") << QStringLiteral("?trigger");
    ASSERT_TRUE(saw(keeper, QStringLiteral("?trigger")));
    Bots(owner).Queue << QStringLiteral("?TRIGGER");
    ASSERT_TRUE(saw(owner, QStringLiteral("Current trigger is: ! (Alt + 33)")));
    // Said by the stranger once; the bot never repeated it.
    EXPECT_EQ(rtbChat(owner).text().count(QStringLiteral("I am in charge now")), 1);
    EXPECT_EQ(rtbChat(stranger).text().count(QStringLiteral("Current trigger is")), 1);
}

TEST_F(CommandsEndToEnd, ATenLineMacroLeavesUnderTheFloodRules) {
    QByteArray macro = "count {\r\n";
    for (int n = 1; n <= 10; ++n)
        macro += "counting " + QByteArray::number(n) + " of ten\r\n";
    macro += "}\r\n";
    writeFile(GetSettingsPath() + QStringLiteral("Macros.ini"), macro);
    MacroWrapper::instance().Reload();

    Bots(owner).Queue << QStringLiteral("!macro count");
    ASSERT_TRUE(saw(owner, QStringLiteral("counting 10 of ten"), 60000));
    for (int n = 1; n <= 10; ++n)
        EXPECT_TRUE(rtbChat(owner).text().contains(QStringLiteral("counting %1 of ten").arg(n)));
    EXPECT_TRUE(Bots(keeper).Online());
    EXPECT_FALSE(rtbChat(keeper).text().contains(QStringLiteral("Disconnected")));
}
