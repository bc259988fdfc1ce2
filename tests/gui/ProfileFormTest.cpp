#include "ProfileFixture.h"
#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

namespace {

class ProfileFormTest : public ProfileFixture {
protected:
    std::unique_ptr<frmConfig> openForm(int slot = 0) {
        auto form = std::make_unique<frmConfig>(slot, window.get());
        form->show();
        return form;
    }
    // What a field shows, and how it is typed into.
    static QString shown(QWidget* field) {
        if (auto* box = qobject_cast<QComboBox*>(field)) return box->currentText();
        if (auto* line = qobject_cast<QLineEdit*>(field)) return line->text();
        return qobject_cast<QCheckBox*>(field)->isChecked() ? QStringLiteral("1")
                                                            : QStringLiteral("0");
    }
    static void type(QWidget* field, const QString& text) {
        if (auto* box = qobject_cast<QComboBox*>(field)) {
            if (box->isEditable())
                box->setEditText(text);
            else
                box->setCurrentIndex(box->findText(text));
        } else if (auto* line = qobject_cast<QLineEdit*>(field)) {
            line->setText(text);
        } else {
            qobject_cast<QCheckBox*>(field)->setChecked(text == u"1");
        }
    }
};

struct Field {
    const char* control;
    const char* typed;
    const char* value;
    // A string value, or a number for a dword.
    QVariant stored;
    // What the form shows when it opens on what was stored.
    const char* shownAgain;
};

TEST_F(ProfileFormTest, EveryFieldGoesToTheStoreAndComesBack) {
    ProfileLifecycle::CreateProfile(QStringLiteral("Roundtrip"));
    for (const char* db : {"Guests", "Ops"})
        OfferedList::add(OfferedList::Databases, QLatin1String(db));
    // The product first: its choice fills the version byte.
    const Field fields[] = {
        {"cboProduct", "Diablo II: Lord of Destruction", "Product", "D2XP",
         "Diablo II: Lord of Destruction"},
        {"cboAccount", "alice", "Account", "alice", "alice"},
        {"cboPassword", "s3cret", "Password", "s3cret", "s3cret"},
        {"cboCdkey1", "AAAABBBBCCCCDDDD", "Cdkey1", "AAAABBBBCCCCDDDD", "AAAABBBBCCCCDDDD"},
        {"cboCdkey2", "EEEEFFFFGGGGHHHH", "Cdkey2", "EEEEFFFFGGGGHHHH", "EEEEFFFFGGGGHHHH"},
        {"txtVerbyte", "0b", "Verbyte", "0b", "0b"},
        {"cboServer", "127.0.0.1:6112", "Server", "127.0.0.1:6112", "127.0.0.1:6112"},
        {"cboServerBNLS", "127.0.0.1:9367", "ServerBNLS", "127.0.0.1:9367", "127.0.0.1:9367"},
        {"cboChannel", "Clan Test", "Channel", "Clan Test", "Clan Test"},
        {"txtOwner", "Alice A.", "Owner", "Alice A.", "Alice A."},
        {"txtEmail", "alice@example.org", "EmailAddress", "alice@example.org", "alice@example.org"},
        {"txtTrigger", "!", "Trigger", "!", "!"},
        {"cboIdleMsg", "back soon -- $v", "IdleMsg", "back soon -- $v", "back soon -- $v"},
        {"txtIdleTime", "7 minutes", "IdleTime", 7, "7"},
        {"cboDB", "Ops", "Database", "Ops", "Ops"},
        {"cboPing", "Zero (0ms)", "PingSpoof", 2, "Zero (0ms)"},
        {"chkLagplug", "1", "LagPlug", 1, "1"},
    };
    {
        auto form = openForm();
        ASSERT_EQ(form->profiles(), QStringList{QStringLiteral("Roundtrip")});
        for (const Field& f : fields)
            type(part<QWidget>(form.get(), f.control), QLatin1String(f.typed));
        part<QPushButton>(form.get(), "lblApply")->click();
        EXPECT_TRUE(takeWarning(form.get()).isEmpty());
    }
    const QString profile = QStringLiteral("Roundtrip");
    for (const Field& f : fields) {
        if (f.stored.typeId() == QMetaType::Int)
            EXPECT_EQ(storedNumber(profile, f.value), f.stored.toInt()) << f.control;
        else
            EXPECT_EQ(stored(profile, f.value), f.stored.toString()) << f.control;
    }

    auto again = openForm();
    for (const Field& f : fields)
        EXPECT_EQ(shown(part<QWidget>(again.get(), f.control)), QLatin1String(f.shownAgain))
            << f.control;
}

TEST_F(ProfileFormTest, OnlyExpansionsTakeASecondKeyAndEachProductKeepsItsVersionByte) {
    ProfileLifecycle::CreateProfile(QStringLiteral("Keys"));
    auto form = openForm();
    auto* product = part<QComboBox>(form.get(), "cboProduct");
    auto* verbyte = part<QLineEdit>(form.get(), "txtVerbyte");
    auto* key2 = part<QComboBox>(form.get(), "cboCdkey2");
    const std::vector<QWidget*> secondKey = {key2, part<QToolButton>(form.get(), "cmdCdkeyAdd2"),
                                             part<QToolButton>(form.get(), "cmdCdkeyMan2")};
    for (int index = 0; index < product->count(); ++index) {
        product->setCurrentIndex(index);
        const bool expansion = index == 3 || index == 6;
        for (QWidget* control : secondKey)
            EXPECT_EQ(control->isEnabled(), expansion) << index;
    }

    // WarCraft III with a version byte: stored for the profile and the product.
    product->setCurrentIndex(5);
    EXPECT_EQ(verbyte->text(), QString());
    verbyte->setText(QStringLiteral("1a"));
    part<QPushButton>(form.get(), "lblApply")->click();
    EXPECT_EQ(stored(QStringLiteral("Keys"), "Verbyte"), QStringLiteral("1a"));
    EXPECT_EQ(ProfileSheet::storedVerbyte(5), QStringLiteral("1a"));
    product->setCurrentIndex(0);
    product->setCurrentIndex(5);
    EXPECT_EQ(verbyte->text(), QStringLiteral("1a"));

    // Diablo II turns the second key off, but its text still goes to the store.
    product->setCurrentIndex(3);
    key2->setEditText(QStringLiteral("KEEPMEKEEPMEKEEP"));
    product->setCurrentIndex(2);
    EXPECT_FALSE(key2->isEnabled());
    part<QPushButton>(form.get(), "lblApply")->click();
    EXPECT_EQ(stored(QStringLiteral("Keys"), "Cdkey2"), QStringLiteral("KEEPMEKEEPMEKEEP"));
    EXPECT_EQ(stored(QStringLiteral("Keys"), "Product"), QStringLiteral("D2DV"));

    // Keys are offered in upper case; an empty box adds nothing.
    part<QComboBox>(form.get(), "cboCdkey1")->setEditText(QStringLiteral("abcd1234efgh5678"));
    part<QToolButton>(form.get(), "cmdCdkeyAdd1")->click();
    part<QComboBox>(form.get(), "cboAccount")->setEditText(QString());
    part<QToolButton>(form.get(), "cmdAccountAdd")->click();
    EXPECT_EQ(OfferedList::entries(OfferedList::Cdkeys1), QStringList{"ABCD1234EFGH5678"});
    EXPECT_TRUE(OfferedList::entries(OfferedList::Accounts).isEmpty());
    EXPECT_EQ(part<QComboBox>(form.get(), "cboCdkey1")->currentText(),
              QStringLiteral("abcd1234efgh5678"));
}

TEST_F(ProfileFormTest, WithoutProfilesTheFormPointsToTheManagerAndWakesUpOnTheNewOnesDefaults) {
    auto form = openForm();
    EXPECT_TRUE(part<QLabel>(form.get(), "Picture1")->isVisible());
    EXPECT_TRUE(
        part<QLabel>(form.get(), "Picture1")
            ->text()
            .contains(QStringLiteral("Bot has not been installed on this computer before")));
    for (const char* name : {"cboProfiles", "cboAccount", "txtTrigger", "cboPing", "lblSave",
                             "lblApply", "lblLoad", "cmdAccountAdd"})
        EXPECT_FALSE(part<QWidget>(form.get(), name)->isEnabled()) << name;
    EXPECT_TRUE(part<QToolButton>(form.get(), "cmdProfileManage")->isEnabled());

    form->cmdProfileManage_Click();
    auto* manager = part<QDialog>(form.get(), "frmConfigManageProfile");
    auto* name = part<QLineEdit>(manager, "Text1");
    name->setText(QStringLiteral("First"));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_TRUE(name->text().isEmpty());
    QTest::keyClick(manager, Qt::Key_Escape);

    EXPECT_EQ(form->profiles(), QStringList{QStringLiteral("First")});
    EXPECT_FALSE(part<QLabel>(form.get(), "Picture1")->isVisible());
    EXPECT_TRUE(part<QWidget>(form.get(), "picBasic")->isVisible());
    EXPECT_TRUE(part<QWidget>(form.get(), "lblSave")->isEnabled());
    EXPECT_FALSE(part<QWidget>(form.get(), "cboCdkey2")->isEnabled());
    // The link of the page on view is off.
    EXPECT_FALSE(part<QPushButton>(form.get(), "lblBasic")->isEnabled());
    part<QPushButton>(form.get(), "lblAdvanced")->click();
    EXPECT_TRUE(part<QWidget>(form.get(), "picAdvanced")->isVisible());
    EXPECT_FALSE(part<QPushButton>(form.get(), "lblAdvanced")->isEnabled());
    EXPECT_EQ(window->mnuProfiles()->actions().last()->text(), QStringLiteral("First"));

    // The new profile shows the form's defaults, and Save stores them.
    const std::pair<const char*, QString> defaults[] = {
        {"txtOwner", "Corvantide4.0"}, {"txtTrigger", "."},
        {"txtIdleTime", "5"},          {"txtVerbyte", ""},
        {"cboProduct", "StarCraft"},   {"cboServer", SettingsWrapper::Gateways().front()}};
    for (const auto& [control, value] : defaults)
        EXPECT_EQ(shown(part<QWidget>(form.get(), control)), value) << control;
    EXPECT_TRUE(part<QComboBox>(form.get(), "cboIdleMsg")->currentText().endsWith(" -- $v"));
    part<QLineEdit>(form.get(), "txtIdleTime")->setText(QStringLiteral("abc"));
    // Save closes the form once the profile holds what it showed.
    part<QPushButton>(form.get(), "lblSave")->click();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(stored(QStringLiteral("First"), "Product"), QStringLiteral("STAR"));
    EXPECT_EQ(stored(QStringLiteral("First"), "Owner"), QStringLiteral("Corvantide4.0"));
    EXPECT_EQ(storedNumber(QStringLiteral("First"), "IdleTime"), 0);
    EXPECT_EQ(stored(QStringLiteral("First"), "Account"), QString());
}

// A running slot reads what the form stores at its next use: a new trigger
// and a new userbase answer the very next line from the channel.
TEST_F(ProfileFormTest, ALoadedSlotAnswersToTheNewTriggerAndUserbaseAtOnce) {
    ProfileLifecycle::CreateProfile(QStringLiteral("Running"));
    const int slot = onlineSlot(QStringLiteral("Running"));
    OfferedList::add(OfferedList::Databases, QStringLiteral("Crew"));
    Bots(slot).setDatabase(QStringLiteral("Crew"));
    DatabaseWrapper().AddUser(slot, QStringLiteral("Pal"), 50);
    Bots(slot).setDatabase(QString());
    const auto talk = [&](const char* text) {
        Bots(slot).Queue.clear();
        event(slot, 5, QStringLiteral("Pal"), QLatin1String(text));
        return Bots(slot).Queue;
    };
    EXPECT_TRUE(talk(".say one").isEmpty());

    // Opened from the tab's menu, on the slot's own profile.
    SlotTable::instance().SelectBot(slot);
    QAction* configure = window->mnuProfileClick()->findChild<QAction*>("mnuProfConfig");
    ASSERT_NE(configure, nullptr);
    configure->trigger();
    auto* form = part<frmConfig>(window.get(), "frmConfig");
    EXPECT_EQ(part<QComboBox>(form, "cboProfiles")->currentText(), QStringLiteral("Running"));
    part<QLineEdit>(form, "txtTrigger")->setText(QStringLiteral("!"));
    part<QComboBox>(form, "cboDB")->setCurrentText(QStringLiteral("Crew"));
    part<QPushButton>(form, "lblApply")->click();

    EXPECT_EQ(talk("!say two"), QStringList{QStringLiteral("two")});
    EXPECT_TRUE(talk(".say three").isEmpty());

    // Renamed elsewhere, as the terminal does it: the form follows.
    ProfileLifecycle::RenameProfile(QStringLiteral("Running"), QStringLiteral("Racing"));
    EXPECT_EQ(part<QComboBox>(form, "cboProfiles")->currentText(), QStringLiteral("Racing"));
    EXPECT_EQ(part<QLineEdit>(form, "txtTrigger")->text(), QStringLiteral("!"));

    // Loading it again is refused on the console.
    part<QPushButton>(form, "lblLoad")->click();
    EXPECT_TRUE(rtbChat(0).text().contains(
        QStringLiteral("Cannot load profile (Racing) it is already loaded.")));
    form->close();
}

} // namespace
