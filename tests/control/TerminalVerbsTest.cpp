// The terminal's verbs on the store and on loaded slots, as the running bot
// applies them for a person at a terminal.
#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
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

    // A product by its name; an unset value reads as its default.
    ASSERT_EQ(run(QStringLiteral("profile|set|Beta|product|Diablo II: Lord of Destruction"))
                  .status,
              0);
    EXPECT_EQ(run(QStringLiteral("profile|get|beta|Product")).out, QStringLiteral("D2XP\n"));
    EXPECT_EQ(run(QStringLiteral("profile|get|beta|Channels1")).out, QStringLiteral("Clan DbM\n"));
    EXPECT_EQ(run(QStringLiteral("profile|frobnicate")).status, 2);
    run(QStringLiteral("profile|delete|Beta"));
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

// What the terminal stores is what the program will use, what it prints is
// what the program uses, and a password goes in but never comes out.
TEST_F(TerminalVerbs_, ConfigFollowsTheSettingsRulesAndNeverShowsAPassword) {
    RegistryWrapper& store = RegistryWrapper::instance();
    const QString settings = QStringLiteral("HKCU\\Software\\Corvantide4\\Settings");
    store.KillKey(settings); // as on a home never started
    ASSERT_EQ(run(QStringLiteral("profile|new|Main")).status, 0);
    struct Case {
        const char* line;
        int status;
        QString said; // standard output, or the refusal
    };
    const QList<Case> cases{
        {"config|get|Settings|Transparency", 0, QStringLiteral("100")},
        {"config|get|Settings|FloodMode", 0, QStringLiteral("1000")},
        {"config|set|Settings|Transparency|50", 1,
         QStringLiteral("Transparency takes 20, 40, 60, 80 or 100, not '50'.")},
        {"config|set|Settings|FloodMode|750", 1,
         QStringLiteral("FloodMode takes 0, 500, 1000 or 2000, not '750'.")},
        {"config|set|Settings|Transparency|60", 0,
         QStringLiteral("Set Transparency of '") + settings + QStringLiteral("' to '60'.")},
        {"profile|set|Main|PingSpoof|9", 1,
         QStringLiteral("PingSpoof takes 0, 1, 2, 3 or 4, not '9'.")},
        {"profile|set|Main|Password|hunter2", 0, QStringLiteral("Set Password of 'Main'.")},
        {"profile|get|Main|Password", 0, QStringLiteral("********")},
        {"config|set|Profiles\\Main|Password|hunter3", 0,
         QStringLiteral("Set Password of 'HKCU\\Software\\Corvantide4\\Profiles\\Main'.")},
        {"config|get|Profiles\\Main|password", 0, QStringLiteral("********")},
        // A new profile holds the profile form's defaults and follows its product's byte.
        {"profile|get|Main|Server", 0, SettingsWrapper::Gateways().front()},
        {"profile|get|Main|IdleTime", 0, QStringLiteral("5")},
        {"profile|get|Main|Verbyte", 0, QString()},
    };
    for (const Case& c : cases) {
        const VerbResult result = run(QString::fromLatin1(c.line));
        EXPECT_EQ(result.status, c.status) << c.line;
        EXPECT_EQ(c.status == 0 ? result.out : result.err, c.said + u'\n') << c.line;
    }
    // A value written by hand outside the choices reads as the program reads it.
    store.WriteDWORD(settings, QStringLiteral("FloodMode"), 750);
    EXPECT_EQ(run(QStringLiteral("config|get|Settings|FloodMode")).out, QStringLiteral("1000\n"));
    EXPECT_TRUE(run(QStringLiteral("config|get|Settings"))
                    .out.contains(QStringLiteral("\nFloodMode = 1000\n")));
    store.CreateKey(QStringLiteral("HKCU\\Software\\Corvantide4\\Passwords\\hunter4"));
    for (const char* line :
         {"profile|show|Main", "config|get|Profiles\\Main", "config|list|Passwords"}) {
        const VerbResult shown = run(QString::fromLatin1(line));
        EXPECT_EQ(shown.status, 0) << line;
        EXPECT_FALSE(shown.out.contains(QStringLiteral("hunter"))) << line;
    }

    // What keeps a profile from connecting is said under its values.
    EXPECT_TRUE(run(QStringLiteral("profile|show|Main")).out.endsWith(QStringLiteral(
        "\nCannot connect as set: Account is empty; set it with: corvantide profile set Main "
        "Account NAME.\nCannot connect as set: Cdkey1 is empty; set it with: corvantide profile "
        "set Main Cdkey1 KEY.\n")));
    const QList<std::pair<const char*, QString>> setUps{
        {"profile|set|Main|Product|W2BN;profile|set|Main|ServerBNLS|",
         QStringLiteral(
             "ServerBNLS is empty and W2BN always takes its version check from a BNLS "
             "server; set it with: corvantide profile set Main ServerBNLS HOST[:PORT].")},
        {"profile|set|Main|Product|WAR3;config|set|Settings|LocalHashing|on",
         QStringLiteral("LocalHashing is on and PathWAR3 (the WarCraft III folder) is empty; set "
                        "it with: corvantide config set Settings PathWAR3 FOLDER.")},
    };
    for (const auto& [lines, said] : setUps) {
        for (const QString& line : QString::fromLatin1(lines).split(u';'))
            ASSERT_EQ(run(line).status, 0) << line.toStdString();
        EXPECT_TRUE(run(QStringLiteral("profile|show|Main"))
                        .out.contains(QStringLiteral("Cannot connect as set: ") + said))
            << lines;
    }
    run(QStringLiteral("config|delete|Settings|LocalHashing"));
    run(QStringLiteral("profile|delete|Main"));
}

TEST_F(TerminalVerbs_, ListsAndUserbasesChangeInOneLineEachAndTheBotUsesThemAtOnce) {
    SettingsWrapper::instance().setFloodMode(0);
    const int slot = loadConnected(QStringLiteral("Lister"));
    Bots(slot).setOnline(true);
    wsBNET(slot).simulateData(chatEventFrame(1, 0, 20, QStringLiteral("bob"), QStringLiteral("RATS 0")));
    ASSERT_EQ(lvUsers(slot).count(), 1);

    struct Step {
        const char* line;
        int status;
        const char* said; // standard output, or standard error for a refusal
    };
    const Step steps[] = {
        {"filter|list", 0, "No message filters yet; add one with: corvantide filter add '*word*'"},
        {"filter|add|*spam*", 0, "Added filter '*spam*'."},
        {"filter|add|*SPAM*", 1, "'*SPAM*' is a filter already."},
        {"filter|add|spam", 1,
         "A filter needs a '*', which stands for any run of characters: '*spam*' holds back "
         "every line with spam in it."},
        {"filter|list", 0, "*spam*"},
        {"block|add|pest#2", 0, "Blocked 'pest#2'."},
        {"block|list", 0, "pest"},
        {"block|remove|nobody", 1, "'nobody' is not blocked."},
        {"macro|add|greet|Hello", 0, "Added a line to macro 'greet'."},
        {"macro|add|Greet|/me|waves", 0, "Added a line to macro 'Greet'."},
        {"macro|add|greet|}", 1,
         "A macro's name and lines cannot be empty, and a line cannot start with \"}\" or end "
         "with \" {\"; Macros.ini is as it was."},
        {"macro|add|bye|See you", 0, "Added a line to macro 'bye'."},
        {"macro|list", 0, "greet\nbye"},
        {"macro|list|GREET", 0, "Hello\n/me waves"},
        {"macro|remove|greet", 0, "Removed macro 'greet'."},
        {"macro|list|greet", 1, "There is no macro 'greet'."},
        {"alias|add|Pal|bob", 0, "Made alias 'Pal': bob."},
        {"alias|add|pal", 1, "Alias 'Pal' exists already."},
        {"alias|remove|Pal|carol", 1, "'carol' is not in alias 'Pal'; nothing changed."},
        {"group|add|Crew|bob|carol", 0, "Made group 'Crew': bob, carol."},
        {"group|color|crew|#FF8000", 0, "Group 'Crew': #FF8000, prefix 'Crew'."},
        {"group|color|crew|orange", 1,
         "'orange' is not a colour: give six hexadecimal digits, #RRGGBB, or none."},
        {"group|list", 0, "Crew\t#FF8000\tCrew"},
        {"group|remove|crew|carol", 0, "Removed carol from group 'Crew'."},
        {"group|list|Crew", 0, "bob"},
        {"group|remove|Nobody", 1, "There is no group 'Nobody'."},
        {"alias|frobnicate", 2, nullptr},
        {"database|new|Crew", 0, nullptr},
        {"database|new|crew", 1, "A database named 'Crew' already exists."},
        {"database|add|Crew|alice|101", 1, "Flags value must be between 1 - 100!"},
        {"database|add|Crew|alice|ten", 1, "Flags value must be between 1 - 100!"},
        {"database|add|Crew|alice|100", 0, nullptr},
        // The panel's way: an existing rank is overwritten.
        {"database|add|crew|Alice|40", 0, nullptr},
        {"database|list|Crew", 0, "alice\t40"},
        {"profile|new|Lister", 0, nullptr},
        {"database|bind|crew|lister", 0, "Bound database 'Crew' to profile 'Lister'."},
    };
    for (const Step& step : steps) {
        const QString line = QString::fromLatin1(step.line);
        const VerbResult result = run(line);
        EXPECT_EQ(result.status, step.status) << step.line;
        if (step.said) {
            EXPECT_EQ(step.status == 0 ? result.out : result.err,
                      QString::fromLatin1(step.said) + u'\n')
                << step.line;
        }
    }

    // The bot holds the user's lines back and names and colours the user at once.
    EXPECT_TRUE(IsBlocked(QStringLiteral("Pest")));
    EXPECT_EQ(FindAlias(QStringLiteral("bob")), QStringLiteral("Pal"));
    EXPECT_EQ(lvUsers(slot).item(1).color, 0x0080FFu) << "the group's colour, red in the low byte";
    EXPECT_EQ(run(QStringLiteral("alias|remove|pal")).out, QStringLiteral("Removed alias 'Pal'.\n"));
    EXPECT_TRUE(FindAlias(QStringLiteral("bob")).isEmpty());
    EXPECT_EQ(Bots(slot).Database(), QStringLiteral("Crew"));
    EXPECT_TRUE(rtbChat(slot).text().contains(
        QStringLiteral("Binded database 'Crew' to this profile.")));
    // Deleting the database leaves no profile bound to a half-gone userbase.
    EXPECT_EQ(run(QStringLiteral("database|delete|Crew")).status, 0);
    EXPECT_TRUE(Bots(slot).Database().isEmpty());
    expectRefused(QStringLiteral("database|list|Crew"),
                  QStringLiteral("There is no database called \"Crew\"."));
    run(QStringLiteral("profile|delete|Lister"));
}
