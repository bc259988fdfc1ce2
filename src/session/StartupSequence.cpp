#include "session/StartupSequence.h"

#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "commands/MacroWrapper.h"
#include "config/FileWrites.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "logon/BncsUtil.h"
#include "plugins/PluginHost.h"
#include "plugins/PluginLoader.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"

#include <QDir>

void WriteStartupLine(const QString& text) {
    WriteChat(0, Status::Warning, text);
}

namespace {

bool startSlots() {
    SlotTable::instance();
    return true;
}

bool grabCachedVariables() {
    ReadMachineFacts();
    SlotTable::instance().SelectBot(0);
    return true;
}

bool openStore() {
    RegistryWrapper::instance().setCreateKeyIfDoesntExists(true);
    SettingsWrapper::instance().RecordBotDir();
    return true;
}

bool printWelcome() {
    WriteChat(0, {{0xFFFF00, QStringLiteral("Welcome to Corvantide v") + Machine().versionText()}});
    WriteChat(0, {{0xFFFFFF, QString(69, u'-')}});
    WriteChat(0, {{0xFFFF, QStringLiteral("Starting Corvantide..")}});
    return true;
}

bool applyPreviousTheme() {
    SeedDefaultThemes();
    LoadTheme(SettingsWrapper::instance().ThemeFile());
    return true;
}

// The logon component must be at least this version: major, minor, patch.
int requiredVersion(const QString& text) {
    const QStringList parts = text.split(u'.');
    int sum = 0;
    for (const QString& part : parts)
        sum = sum * 100 + part.toInt();
    return sum;
}

bool checkLogonLibrary() {
    WriteStartupLine(QStringLiteral("- Checking BNCSutil version.."));
    if (logon::bncsutil_getVersion() < requiredVersion(QStringLiteral("1.0.3"))) {
        Q_EMIT SlotTable::instance().messageBox(
            QStringLiteral("Corvantide"),
            QStringLiteral("The available BNCSutil library is too old to use. BNCSutil 1.0.3 and "
                           "up is required."));
        return false;
    }
    WriteStartupLine(QStringLiteral("- Checking if CD-Key decoder can be initialized.."));
    if (logon::kd_init() == 0) {
        Q_EMIT SlotTable::instance().messageBox(
            QStringLiteral("Corvantide"),
            QStringLiteral("BNCSutil CD-Key decoder could not be initialized, and Corvantide must "
                           "close as a result."));
        return false;
    }
    return true;
}

bool checkStructure() {
    WriteStartupLine(QStringLiteral("- Checking directory structure.."));
    const QDir program(GetProgramFolder());
    for (const char* folder : {"Languages", "Mail", "Plugins", "Themes"}) {
        const QString name = QString::fromLatin1(folder);
        if (!program.exists(name) && program.mkpath(name)) {
            WriteChat(0, Status::Information,
                      QStringLiteral("- Created folder '") + name + QStringLiteral("'"));
        }
        // Mail is between users: the folder is the user's alone.
        if (name == u"Mail") MakePrivateFolder(program.filePath(name));
    }
    WriteStartupLine(QStringLiteral("- Checking list of servers.."));
    const QStringList created = SettingsWrapper::instance().SeedStore();
    for (const QString& key : created)
        WriteStartupLine(QStringLiteral("- Created registry key '") + key + QStringLiteral("'"));
    if (!created.isEmpty()) {
        WriteChat(0, Status::Success,
                  QStringLiteral("- Created various registry keys for first time use."));
    }
    return true;
}

bool importBlockedUsers() {
    WriteStartupLine(QStringLiteral("- Importing Blocked Users.."));
    LoadBlocks();
    return true;
}

bool importCachedSettings() {
    WriteStartupLine(QStringLiteral("- Importing Cached Settings.."));
    SettingsWrapper::instance().WriteBackStartupSettings();
    return true;
}

bool importGroupsAndAliases() {
    WriteStartupLine(QStringLiteral("- Importing Groups & Aliases.."));
    RefreshAliasesAndGroups(SlotTable::instance().CurrentIndex());
    return true;
}

bool importMacros() {
    WriteStartupLine(QStringLiteral("- Importing Macros.."));
    MacroWrapper::instance().Reload();
    return true;
}

bool importMessageFilters() {
    WriteStartupLine(QStringLiteral("- Importing Message Filters.."));
    LoadFilters();
    return true;
}

bool importScript() {
    LoadScript();
    return true;
}

bool importPlugins() {
    WriteStartupLine(QStringLiteral("- Importing Plugins.."));
    InstallPluginLoader();
    PluginHost::instance().ImportPlugins();
    return true;
}

bool importProfiles() {
    WriteStartupLine(QStringLiteral("- Importing Profiles set for Auto Loading.."));
    RegistryWrapper& store = RegistryWrapper::instance();
    const QString profilesKey = SettingsWrapper::RootKey() + QStringLiteral("Profiles\\");
    QStringList names;
    store.EnumKeys(profilesKey, names);
    SlotTable& table = SlotTable::instance();
    bool loaded = false;
    for (const QString& name : names) {
        if (store.ReadDWORD(profilesKey + name, QStringLiteral("Load at Startup"), 0) != 1)
            continue;
        WriteStartupLine(QStringLiteral("- Importing Profile \"") + name + QStringLiteral("\".."));
        table.LoadProfile(name);
        loaded = true;
    }
    if (!loaded)
        WriteChat(0, Status::Error, QStringLiteral("- There are no bots set to be loaded!"));
    table.DisplayProfiles();
    return true;
}

// The style sheets of the theme folder become the rows of the theme menu;
// the window dresses itself in the one ThemeID names.
bool importThemes() {
    WriteStartupLine(QStringLiteral("- Importing Themes.."));
    ImportThemes();
    const QString active = ActiveThemeName();
    if (!active.isEmpty()) Q_EMIT ThemeEvents::instance().styleSheetChosen(active);
    return true;
}

bool startTimers() {
    WriteStartupLine(QStringLiteral("- Initializing timers.."));
    TimedEvents::instance().start();
    return true;
}

// The desktop services take these; a run on the terminal has none, and the
// steps pass by.
bool createTrayIcon() {
    DesktopShell::instance().AddTrayIcon();
    return true;
}

bool registerHotkey() {
    DesktopShell::instance().RegisterHideHotkey();
    return true;
}

bool loadFonts() {
    DesktopShell::instance().LoadFonts();
    return true;
}

bool applyControlProperties() {
    DesktopShell::instance().ApplyControlProperties();
    return true;
}

bool countOnlineUsers() {
    DesktopShell::instance().RefreshUsersOnline();
    return true;
}

// The answer comes later: the start never waits on the web site.
bool checkForUpdates() {
    DesktopShell::instance().CheckForUpdates();
    return true;
}

bool finish() {
    SlotTable::instance().IsLoaded = true;
    WriteChat(0, {{CurrentTheme().status.Success,
                   QStringLiteral("Completed all startup tasks successfully.")}});
    return true;
}

} // namespace

StartupSequence::StartupSequence() {
    m_steps = {
        {QStringLiteral("Starting Corvantide.."), startSlots},
        {QStringLiteral("Grabbing cached variables.."), grabCachedVariables},
        {QStringLiteral("Creating tray icon.."), createTrayIcon},
        {QStringLiteral("Importing script file.."), importScript},
        {QString(), openStore},
        {QStringLiteral("Registering hide/show hotkey (Alt+M)..."), registerHotkey},
        {QStringLiteral("Applying fonts..."), loadFonts},
        {QStringLiteral("Printing welcome message..."), printWelcome},
        {QStringLiteral("Applying previous Theme.."), applyPreviousTheme},
        {QStringLiteral("Checking BNCSutil..."), checkLogonLibrary},
        {QStringLiteral("Determining usage/stucture..."), checkStructure},
        {QStringLiteral("Importing Blocked Users.."), importBlockedUsers},
        {QStringLiteral("Importing Cached Settings.."), importCachedSettings},
        {QStringLiteral("Importing Groups && Aliases.."), importGroupsAndAliases},
        {QStringLiteral("Importing Macros.."), importMacros},
        {QStringLiteral("Importing Message Filters.."), importMessageFilters},
        {QStringLiteral("Importing Plugins.."), importPlugins},
        {QStringLiteral("Importing Profiles.."), importProfiles},
        {QStringLiteral("Importing Themes.."), importThemes},
        {QStringLiteral("Applying control properties.."), applyControlProperties},
        {QStringLiteral("Initializing timers..."), startTimers},
        {QStringLiteral("Checking for online users..."), countOnlineUsers},
        {QStringLiteral("Checking for updates..."), checkForUpdates},
        {QString(), finish},
    };
}

bool StartupSequence::run() {
    for (const Step& step : m_steps) {
        if (!step.text.isEmpty()) Q_EMIT stepStarted(step.text);
        if (!step.run()) return false;
    }
    return true;
}
