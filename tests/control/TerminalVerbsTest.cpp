// The terminal's verbs on the store and on loaded slots, as the running bot
// applies them for a person at a terminal.
#include "chat/BotElement.h"
#include "common/SlotFixture.h"
#include "config/QtPrinters.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "control/TerminalVerbs.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "session/ProfileLifecycle.h"

#include <QSignalSpy>

namespace {

class TerminalVerbs_ : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        RegistryWrapper::instance().setCreateKeyIfDoesntExists(true);
    }
    static VerbResult run(const QString& line) {
        return TerminalVerbs::Run(line.split(u'|'));
    }
    static void expectRefused(const QString& line, const QString& err) {
        const VerbResult result = run(line);
        EXPECT_EQ(result.status, 1) << line.toStdString();
        EXPECT_EQ(result.err, err + u'\n') << line.toStdString();
        EXPECT_TRUE(result.out.isEmpty());
    }
};

} // namespace

TEST_F(TerminalVerbs_, ProfilesChangeUnderTheirLoadedSlots) {
    ASSERT_EQ(run(QStringLiteral("profile|new|Alpha")).status, 0);
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Alpha"));
    QSignalSpy renamed(&SlotTable::instance(), &SlotTable::slotRenamed);

    EXPECT_EQ(run(QStringLiteral("profile|rename|alpha|Beta")).out,
              QStringLiteral("Renamed profile 'Alpha' to 'Beta'.\n"));
    EXPECT_EQ(Bots(slot).Profile(), QStringLiteral("Beta"));
    EXPECT_EQ(renamed.count(), 1);
    ASSERT_EQ(run(QStringLiteral("profile|set|BETA|trigger|~")).status, 0);
    EXPECT_EQ(Bots(slot).Config.Trigger(), QStringLiteral("~")) << "the slot reads the new key";

    expectRefused(QStringLiteral("profile|new|Beta"),
                  QStringLiteral("A profile named 'Beta' already exists."));
    expectRefused(QStringLiteral("profile|new|a/b"),
                  QStringLiteral("Invalid characters were used this field cannot contain / \\ , ?"));
    expectRefused(QStringLiteral("profile|clone|Beta|bEta"),
                  QStringLiteral("Could not clone the profile, it may already exist!"));
    expectRefused(QStringLiteral("profile|rename|Beta|a\\b"),
                  QStringLiteral("Could not rename profile, cannot contain \\ in name!"));
    // A name that would steer the terminal printing it goes in nowhere.
    const QString noControls =
        QStringLiteral("A profile name cannot contain control characters (tabs, line breaks, "
                       "escapes).");
    for (const char* line : {"profile|new|Demo\x1b[2J", "profile|clone|Beta|Be\nta2",
                             "profile|rename|Beta|Be\tta", "profile|set|Beta\r|Trigger|~",
                             "database|bind|Crew|Beta\x07"})
        expectRefused(QString::fromLatin1(line), noControls);
    EXPECT_EQ(ProfileLifecycle::ListProfiles(), QStringList{QStringLiteral("Beta")});
    EXPECT_TRUE(run(QStringLiteral("profile|set|Beta|Colour|red"))
                    .err.startsWith(QStringLiteral("A profile has no value 'Colour'; it has: ")));
    expectRefused(QStringLiteral("profile|set|Beta|LagPlug|maybe"),
                  QStringLiteral("LagPlug takes on or off, not 'maybe'."));
    expectRefused(QStringLiteral("profile|set|Beta|Product|Doom"),
                  QStringLiteral("Product takes one of STAR, SEXP, D2DV, D2XP, W2BN, WAR3, W3XP, "
                                 "not 'Doom'."));
    expectRefused(QStringLiteral("profile|get|Gamma|Account"),
                  QStringLiteral("No profile named 'Gamma'; `corvantide profile list` shows "
                                 "them."));

    // A clone carries the values; a delete unloads the slot and keeps it for reuse.
    ASSERT_EQ(run(QStringLiteral("profile|set|Beta|Product|Diablo II: Lord of Destruction"))
                  .status,
              0);
    ASSERT_EQ(run(QStringLiteral("profile|clone|Beta|Gamma")).status, 0);
    EXPECT_EQ(run(QStringLiteral("profile|get|gamma|Product")).out, QStringLiteral("D2XP\n"));
    EXPECT_EQ(run(QStringLiteral("profile|get|gamma|IdleTime")).out, QStringLiteral("1\n"))
        << "an unset value reads as its default";
    EXPECT_EQ(run(QStringLiteral("profile|delete|beta")).out,
              QStringLiteral("Deleted profile 'Beta'.\n"));
    EXPECT_FALSE(Bots(slot).IsLoaded);
    EXPECT_EQ(ProfileLifecycle::ListProfiles(), QStringList{QStringLiteral("Gamma")});
    EXPECT_EQ(run(QStringLiteral("profile|frobnicate")).status, 2);
    run(QStringLiteral("profile|delete|Gamma"));
}

TEST_F(TerminalVerbs_, ConfigValuesAreTypedByTheCatalogueAndAnnounced) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    QSignalSpy changed(&settings, &SettingsWrapper::settingChanged);
    EXPECT_EQ(run(QStringLiteral("config|set|Settings|floodmode|500")).out,
              QStringLiteral("Set floodmode of 'HKCU\\Software\\Corvantide4\\Settings' to "
                             "'500'.\n"));
    EXPECT_EQ(settings.FloodMode(), 500);
    ASSERT_EQ(run(QStringLiteral("config|set|Settings|FlashEnabled|on")).status, 0);
    EXPECT_TRUE(settings.Flash());
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed[0][0].toString(), QStringLiteral("FloodMode"));
    EXPECT_EQ(changed[1][0].toString(), QStringLiteral("Flash"));
    expectRefused(QStringLiteral("config|set|Settings|ChatSize|big"),
                  QStringLiteral("ChatSize takes a number, not 'big'."));

    // Keys below the root by their shape: a group's colour is a number.
    ASSERT_EQ(run(QStringLiteral("config|set|Groups\\Buddies|Color|0xFF0000")).status, 0);
    EXPECT_EQ(run(QStringLiteral("config|get|Groups\\Buddies|color")).out,
              QStringLiteral("16711680\n"));
    EXPECT_EQ(run(QStringLiteral("config|set|Groups\\Buddies|Mood|calm")).status, 1);
    ASSERT_EQ(run(QStringLiteral("config|set|Groups\\Buddies|Mood|calm|--text")).status, 0);
    EXPECT_EQ(run(QStringLiteral("config|get|HKCU\\Software\\Corvantide4\\Groups\\Buddies")).out,
              QStringLiteral("Color = 16711680\nMood = calm\n"));
    EXPECT_EQ(run(QStringLiteral("config|delete|Groups\\Buddies|Mood")).status, 0);
    EXPECT_EQ(run(QStringLiteral("config|list|Groups")).out, QStringLiteral("Buddies\n"));
    expectRefused(QStringLiteral("config|delete|Groups"),
                  QStringLiteral("'HKCU\\Software\\Corvantide4\\Groups' has subkeys; delete them "
                                 "first."));
    EXPECT_EQ(run(QStringLiteral("config|delete|Groups\\Buddies")).status, 0);
    expectRefused(QStringLiteral("config|get|Groups\\Buddies"),
                  QStringLiteral("No key 'HKCU\\Software\\Corvantide4\\Groups\\Buddies' in the "
                                 "settings."));

    // An alias made or undone by hand renames the user in the lists at once.
    settings.setFloodMode(0);
    const int slot = loadConnected(QStringLiteral("Watcher"));
    Bots(slot).setOnline(true);
    wsBNET(slot).simulateData(chatEventFrame(1, 0, 0, QStringLiteral("bob"), QStringLiteral("RATS 0")));
    ASSERT_EQ(run(QStringLiteral("config|set|Aliases\\Crew\\bob|x|1|--text")).status, 0);
    EXPECT_EQ(lvUsers(slot).item(1).text, QStringLiteral("Crew"));
    ASSERT_EQ(run(QStringLiteral("config|delete|Aliases\\Crew\\bob")).status, 0);
    EXPECT_EQ(lvUsers(slot).item(1).text, QStringLiteral("bob"));
}

TEST_F(TerminalVerbs_, UserbasesAreMadeFilledAndBoundInOneLineEach) {
    ASSERT_EQ(run(QStringLiteral("profile|new|Keeper")).status, 0);
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Keeper"));
    ASSERT_EQ(run(QStringLiteral("database|new|Crew")).status, 0);
    expectRefused(QStringLiteral("database|new|crew"),
                  QStringLiteral("A database named 'Crew' already exists."));
    expectRefused(QStringLiteral("database|add|Crew|alice|101"),
                  QStringLiteral("Flags value must be between 1 - 100!"));
    ASSERT_EQ(run(QStringLiteral("database|add|Crew|alice|100")).status, 0);
    ASSERT_EQ(run(QStringLiteral("database|add|crew|Alice|40")).status, 0)
        << "the panel's way: an existing rank is overwritten";
    EXPECT_EQ(run(QStringLiteral("database|list|Crew")).out, QStringLiteral("alice\t40\n"));

    EXPECT_EQ(run(QStringLiteral("database|bind|crew|keeper")).out,
              QStringLiteral("Bound database 'Crew' to profile 'Keeper'.\n"));
    EXPECT_EQ(Bots(slot).Database(), QStringLiteral("Crew"));
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("Binded database 'Crew' to this profile.")));

    // Deleting the database leaves no profile bound to a half-gone userbase.
    EXPECT_EQ(run(QStringLiteral("database|delete|Crew")).status, 0);
    EXPECT_TRUE(Bots(slot).Database().isEmpty());
    expectRefused(QStringLiteral("database|list|Crew"),
                  QStringLiteral("There is no database called \"Crew\"."));
    run(QStringLiteral("profile|delete|Keeper"));
}
