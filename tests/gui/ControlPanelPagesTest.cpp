#include "DialogAnswers.h"
#include "WindowFixture.h"
#include "commands/AliasGroupEditor.h"
#include "commands/AliasesAndGroups.h"
#include "commands/DatabaseManager.h"
#include "commands/DatabaseWrapper.h"
#include "config/Folders.h"
#include "gui/ControlPanelAliases.h"
#include "gui/ControlPanelDatabases.h"
#include "gui/ControlPanelGroups.h"
#include "gui/ControlPanelPlugins.h"
#include "gui/UserListView.h"
#include "platform/ListModel.h"
#include "plugins/PluginHost.h"
#include "session/ProfileLifecycle.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTreeWidget>

namespace {

// The pages against the store and the running slots, their boxes answered
// as a person would.
class ControlPanelPagesTest : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        forgetEntries();
    }
    // The other window tests share the store: they find it as they left it.
    void TearDown() override {
        forgetEntries();
        WindowFixture::TearDown();
    }
    static void forgetEntries() {
        for (const QString& database : DatabaseManager::ListDatabases())
            DatabaseManager::DeleteDatabase(database);
        for (const QString& alias : AliasGroupEditor::AliasNames())
            AliasGroupEditor::RemoveAlias(alias);
        for (const QString& group : AliasGroupEditor::GroupNames())
            AliasGroupEditor::RemoveGroup(group);
    }

    // Clicks a button that opens an input box, types the answer, and gives
    // the warning that follows, empty if none.
    static QString clickAndType(QWidget* page, const char* button, const QString& text) {
        const auto typed = answerNext<QInputDialog>([text](QInputDialog* input) {
            input->setTextValue(text);
            input->accept();
        });
        return warningOf(page, button);
    }
    // Clicks a button and gives the text of the warning it raises, empty if none.
    static QString warningOf(QWidget* page, const char* button) {
        QString said;
        const auto warned = answerNext<QMessageBox>([&said](QMessageBox* message) {
            said = message->text();
            message->accept();
        });
        part<QPushButton>(page, button)->click();
        return said;
    }
    // Clicks a button that asks a question, and answers yes.
    static void clickYes(QWidget* page, const char* button) {
        const auto yes = answerNext<QMessageBox>(
            [](QMessageBox* message) { message->button(QMessageBox::Yes)->click(); });
        part<QPushButton>(page, button)->click();
    }
    int profile(const QString& name) {
        ProfileLifecycle::CreateProfile(name);
        return SlotTable::instance().LoadProfile(name);
    }
    static qint32 rankIn(int slot, const QString& name) {
        QString user = name;
        qint32 rank = 0;
        DatabaseWrapper().GrabRank(slot, user, rank);
        return rank;
    }
};

// (The manager's other refusals are the database manager test's.)
TEST_F(ControlPanelPagesTest, DatabasesAreMadeBoundToTickedProfilesAndGiveRanks) {
    const int first = profile(QStringLiteral("first"));
    const int second = profile(QStringLiteral("second"));
    const int third = profile(QStringLiteral("third"));
    ControlPanelDatabases page;
    page.show();
    page.load();
    QLineEdit* username = part<QLineEdit>(&page, "h3cUsername");
    QLineEdit* flags = part<QLineEdit>(&page, "h3cFlags");
    username->setText(QStringLiteral("bob"));
    flags->setText(QStringLiteral("10"));
    EXPECT_EQ(warningOf(&page, "h3cAddUser"),
              QStringLiteral("There are no database profiles created!"));

    auto* databases = part<QListWidget>(&page, "h3cDatabase");
    clickAndType(&page, "h3cNew", QStringLiteral("Other"));
    clickAndType(&page, "h3cNew", QStringLiteral("Main"));
    ASSERT_EQ(page.selectedDatabase(), QStringLiteral("Main"));

    // The first profile uses another database; only the second is ticked.
    ASSERT_TRUE(DatabaseManager::BindDatabase(QStringLiteral("first"), QStringLiteral("Other")).ok);
    databases->setCurrentRow(1);
    databases->setCurrentRow(0);
    auto* bots = part<QListWidget>(&page, "h3cBots");
    ASSERT_EQ(bots->count(), 3);
    EXPECT_EQ(bots->item(0)->checkState(), Qt::Unchecked);
    bots->item(1)->setCheckState(Qt::Checked);
    EXPECT_EQ(warningOf(&page, "h3cBind"), QString());
    EXPECT_EQ(Bots(first).Database(), QStringLiteral("Other")) << "unticked, bound elsewhere";
    EXPECT_EQ(Bots(second).Database(), QStringLiteral("Main"));
    EXPECT_TRUE(Bots(third).Database().isEmpty());

    flags->setText(QStringLiteral("abc"));
    EXPECT_EQ(warningOf(&page, "h3cAddUser"),
              QStringLiteral("Flags value must be between 1 - 100!"));
    username->clear();
    flags->setText(QStringLiteral("100"));
    EXPECT_EQ(warningOf(&page, "h3cAddUser"), QStringLiteral("You must enter a username!"));
    username->setText(QStringLiteral("bob"));
    EXPECT_EQ(warningOf(&page, "h3cAddUser"), QString());
    auto* users = part<QTreeWidget>(&page, "h3cUsers");
    ASSERT_EQ(users->topLevelItemCount(), 1);
    EXPECT_EQ(users->topLevelItem(0)->text(1), QStringLiteral("100"));
    EXPECT_EQ(rankIn(second, QStringLiteral("Bob")), 100) << "the running profile sees it at once";

    clickYes(&page, "h3cDelete");
    EXPECT_EQ(DatabaseManager::ListDatabases(), QStringList{QStringLiteral("Other")});
    EXPECT_TRUE(Bots(second).Database().isEmpty());
    EXPECT_EQ(page.selectedDatabase(), QStringLiteral("Other"));
}

TEST_F(ControlPanelPagesTest, SavedAliasesAndGroupsShowAtOnceInTheUserLists) {
    const int slot = onlineSlot(QStringLiteral("Watcher"));
    const int hidden = onlineSlot(QStringLiteral("Hidden"));
    SlotTable::instance().SelectBot(slot);
    for (int i : {slot, hidden})
        event(i, 1, QStringLiteral("bob"), QStringLiteral("RATS 0 0 0"));
    const QAbstractItemModel* list = window->userList()->model();

    ControlPanelAliases aliases;
    aliases.show();
    aliases.load();
    clickAndType(&aliases, "h3aAdd", QStringLiteral("Crew"));
    ASSERT_EQ(aliases.selectedName(), QStringLiteral("Crew"));
    part<QPlainTextEdit>(&aliases, "h3aMembers")->setPlainText(QStringLiteral("bob\r\n\r\ncarl"));
    ASSERT_TRUE(aliases.save());
    EXPECT_EQ(AliasGroupEditor::AliasMembers(QStringLiteral("Crew")), (QStringList{"bob", "carl"}));
    EXPECT_EQ(list->index(0, 0).data().toString(), QStringLiteral("Crew"));
    EXPECT_EQ(lvUsers(hidden).item(1).text, QStringLiteral("Crew")) << "the tab not on screen too";
    part<QPlainTextEdit>(&aliases, "h3aMembers")->setPlainText(QStringLiteral("a\\b"));
    {
        const auto warned = answerNext<QMessageBox>([](QMessageBox* box) { box->accept(); });
        EXPECT_FALSE(aliases.save()) << "a refused save says so";
    }

    ControlPanelGroups groups;
    groups.show();
    groups.load();
    clickAndType(&groups, "h3eAdd", QStringLiteral("Staff"));
    EXPECT_EQ(part<QLineEdit>(&groups, "h3ePrefix")->text(), QStringLiteral("Staff"));
    EXPECT_EQ(groups.color(), 0xFFFFFF);
    {
        const auto picked = answerNext<QColorDialog>([](QColorDialog* picker) {
            picker->setCurrentColor(QColor(255, 0, 0));
            picker->accept();
        });
        part<QPushButton>(&groups, "h3eColor")->click();
    }
    EXPECT_EQ(groups.color(), 0x0000FF) << "red in the low byte";
    part<QPlainTextEdit>(&groups, "h3eMembers")->setPlainText(QStringLiteral("bob"));
    part<QLineEdit>(&groups, "h3ePrefix")->setText(QStringLiteral("Staffer"));
    ASSERT_TRUE(groups.save());
    EXPECT_EQ(GetGroupPrefix(QStringLiteral("Staff")), QStringLiteral("Staffer"));
    EXPECT_EQ(list->index(0, 0).data(ListModel::ColorRole).toUInt(), 0x0000FFu);

    clickYes(&groups, "h3eRemove");
    EXPECT_TRUE(AliasGroupEditor::GroupNames().isEmpty());
    EXPECT_TRUE(groups.selectedName().isEmpty());
}

// A plug-in that answers the members the Plugins page calls and notes them.
class NotingPlugin : public PluginObject {
public:
    explicit NotingPlugin(QStringList* calls) : m_calls(calls) {}
    QVariant call(const QString& member, QVariantList& args) override {
        const QString first = args.isEmpty() ? QString() : args[0].toString();
        *m_calls << member + (first.isEmpty() ? QString() : u' ' + first);
        if (member == QLatin1String("Description")) return QStringLiteral("Says hello.");
        return {};
    }

private:
    QStringList* m_calls;
};

TEST_F(ControlPanelPagesTest, PluginsAreListedDescribedStartedAndStopped) {
    const QString folder = GetProgramFolder() + QStringLiteral("/Plugins");
    QDir().mkpath(folder);
    for (const char* file : {"Hello.js", "Broken.so"})
        QFile(folder + u'/' + QLatin1String(file)).open(QIODevice::WriteOnly);
    QStringList calls;
    PluginHost& host = PluginHost::instance();
    host.setFactory([&calls](const QString& name) -> std::shared_ptr<PluginObject> {
        if (name == QLatin1String("Broken")) throw PluginCallError(QStringLiteral("no such class"));
        return std::make_shared<NotingPlugin>(&calls);
    });

    ControlPanelPlugins page;
    page.show();
    page.load();
    auto* plugins = part<QListWidget>(&page, "h3gPlug");
    ASSERT_EQ(plugins->count(), 2);
    EXPECT_TRUE(part<QLabel>(&page, "h3gDesc")->text().startsWith("Could not grab description"));
    auto* action = part<QPushButton>(&page, "h3gAction");
    EXPECT_EQ(
        warningOf(&page, "h3gAction"),
        QStringLiteral("Could not load plugin, details have been posted in bot console window."));
    EXPECT_TRUE(rtbChat(0).text().contains("Error -> Could not start plugin"));
    EXPECT_FALSE(host.isLoaded(QStringLiteral("Broken")));

    plugins->setCurrentRow(1);
    EXPECT_EQ(part<QLabel>(&page, "h3gDesc")->text(), QStringLiteral("Says hello."));
    part<QCheckBox>(&page, "h3gAuto")->click();
    EXPECT_TRUE(PluginHost::AutoLoad(QStringLiteral("Hello")));
    action->click();
    EXPECT_TRUE(host.isLoaded(QStringLiteral("Hello")));
    EXPECT_EQ(action->text(), QStringLiteral("Shutdown"));

    // What the running plug-in offers is listed, and a choice goes back to it.
    host.AddOption(QStringLiteral("Hello"), QStringLiteral("Wave"), 1, 7);
    auto* options = part<QListView>(&page, "h3gOptions");
    ASSERT_EQ(options->model()->rowCount(), 1);
    Q_EMIT options->activated(options->model()->index(0, 0));
    EXPECT_TRUE(calls.contains(QStringLiteral("OptionClicked 7")));
    EXPECT_TRUE(host.DeleteOption(QStringLiteral("Hello"), 7));

    action->click();
    EXPECT_FALSE(host.isLoaded(QStringLiteral("Hello")));
    EXPECT_EQ(action->text(), QStringLiteral("Startup"));
    EXPECT_EQ(calls.filter(QRegularExpression(QStringLiteral("^(Startup|Shutdown)"))),
              (QStringList{"Startup", "Shutdown"}));
    host.setFactory({});
    QDir(folder).removeRecursively();
}

} // namespace
