#include "gui/frmBot.h"

#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "commands/ChatInput.h"
#include "commands/CommandsPage.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "desktop/DesktopIntegration.h"
#include "desktop/WebSite.h"
#include "desktop/WindowFader.h"
#include "gui/ChatView.h"
#include "gui/FoldOutPanels.h"
#include "gui/IconPainter.h"
#include "gui/ProfileTabBar.h"
#include "gui/SendBox.h"
#include "gui/SocialForms.h"
#include "gui/UserListView.h"
#include "gui/frmConfig.h"
#include "gui/frmConfigManageProfile.h"
#include "gui/frmControlPanel.h"
#include "media/SongWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "plugins/PluginMainForm.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/MachineFacts.h"
#include "session/DisconnectBot.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"
#include "social/ClanPacket.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <functional>
#include <memory>

namespace {

// The window's colours until a theme's style sheet dresses it: dark, so that
// the chat's bright colours read well.
QPalette darkPalette() {
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x1b, 0x1e, 0x24));
    p.setColor(QPalette::WindowText, QColor(0xe0, 0xe0, 0xe0));
    p.setColor(QPalette::Base, QColor(0x0e, 0x10, 0x13));
    p.setColor(QPalette::AlternateBase, QColor(0x16, 0x19, 0x1e));
    p.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Button, QColor(0x29, 0x2e, 0x37));
    p.setColor(QPalette::ButtonText, QColor(0xe0, 0xe0, 0xe0));
    p.setColor(QPalette::Highlight, QColor(0x2f, 0x5f, 0x8f));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x22, 0x26, 0x2c));
    p.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::PlaceholderText, QColor(0x80, 0x86, 0x90));
    p.setColor(QPalette::Link, QColor(0x6f, 0xa8, 0xdc));
    p.setColor(QPalette::Mid, QColor(0x3f, 0x48, 0x50));
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x70, 0x70, 0x70));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x70, 0x70, 0x70));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x70, 0x70, 0x70));
    return p;
}

// A family of the settings if this host has it, else the desktop's font;
// the size in points when one is stored.
QFont pickFont(const QString& family, int points) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    if (QFontDatabase::families().contains(family, Qt::CaseInsensitive)) font.setFamily(family);
    if (points > 0) font.setPointSize(points);
    return font;
}

// Asks the boxes of one account menu in turn; an empty or cancelled box
// ends the question and nothing is done.
void askInTurn(QWidget* parent, const QString& title,
               std::vector<std::pair<QString, QString>> boxes,
               std::function<void(const QStringList&)> done, QStringList answers = {}) {
    if (answers.size() == qsizetype(boxes.size())) {
        done(answers);
        return;
    }
    const auto& [prompt, initial] = boxes[size_t(answers.size())];
    auto* dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setLabelText(prompt);
    dialog->setTextValue(initial);
    QObject::connect(dialog, &QInputDialog::textValueSelected, parent,
                     [=](const QString& text) mutable {
                         if (text.isEmpty()) return;
                         answers << text;
                         askInTurn(parent, title, boxes, done, answers);
                     });
    dialog->open();
}

QToolButton* toolbarButton(const QString& text, const QString& name) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setObjectName(name);
    button->setAutoRaise(true);
    return button;
}

} // namespace

frmBot::frmBot(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmBot"));
    setWindowIcon(IconPainter::icon(IconPainter::Program));
    // For the whole program: dialogs and menus too, and the widgets a theme's
    // style sheet leaves to the palette.
    QApplication::setPalette(darkPalette());
    setMinimumSize(kMinimumSize);
    resize(960, 620);
    SettingsWrapper::instance().setInstalledFonts(QFontDatabase::families());

    buildMenus();
    setCentralWidget(buildCentre());
    buildStatusBar();

    SlotTable& table = SlotTable::instance();
    for (int i = 0; i <= table.highestIndex(); ++i)
        addSlotViews(i);
    connect(&table, &SlotTable::slotCreated, this, &frmBot::addSlotViews);
    connect(&table, &SlotTable::activeSlotChanged, this, &frmBot::onSlotSelected);
    connect(&table, &SlotTable::slotLoaded, this, &frmBot::tmrUpdate_Timer);
    connect(&table, &SlotTable::slotUnloaded, this, &frmBot::tmrUpdate_Timer);
    connect(&table, &SlotTable::profilesChanged, this, &frmBot::DisplayProfiles);
    connect(&table, &SlotTable::slotRenamed, this, &frmBot::onSlotRenamed);
    connect(&table, &SlotTable::clanTagChanged, m_panels, &FoldOutPanels::refreshClan);
    connect(m_panels, &FoldOutPanels::clanMembersRequested, this, [this] {
        SelectedList = QStringLiteral("Clan");
        SelectList();
    });
    connect(m_panels, &FoldOutPanels::musicUsed, m_send, qOverload<>(&QWidget::setFocus));
    // The media page of the control panel.
    connect(m_panels, &FoldOutPanels::mediaSettingsRequested, this,
            [this] { openControlPanel(7); });
    connect(m_panels, &FoldOutPanels::pluginSettingsRequested, this,
            [this] { openControlPanel(17); });
    ConnectSocialForms(this);
    connect(&table, &SlotTable::channelListChanged, this, [this](int index) {
        if (index == SlotTable::instance().CurrentIndex()) DisplayChannels();
    });
    connect(&table, &SlotTable::messageBox, this, &frmBot::showMessageBox);
    connect(&table, &SlotTable::sendBoxRefill, this, [this](int index, const QString& text) {
        if (index == SlotTable::instance().CurrentIndex()) m_send->setEditText(text);
    });
    // A command asked for it; it runs inside a socket event, so the window
    // acts once that event is over.
    connect(
        &DesktopShell::instance(), &DesktopShell::quitRequested, this,
        [this] {
            confirmClose = false;
            close();
        },
        Qt::QueuedConnection);
    connect(&DesktopShell::instance(), &DesktopShell::clipboardTextOffered, this,
            [](const QString& text) { QApplication::clipboard()->setText(text); });
    // The start and the stop hand the window its own steps.
    connect(&DesktopShell::instance(), &DesktopShell::fontsRequested, this, &frmBot::LoadFonts);
    connect(&DesktopShell::instance(), &DesktopShell::controlPropertiesRequested, this, [this] {
        applyLayout();
        refreshMenuMarks();
    });
    connect(&DesktopShell::instance(), &DesktopShell::formsKillRequested, this, [this] {
        for (QWidget* form : findChildren<QWidget*>()) {
            if (form->isWindow() && form->isVisible()) form->close();
        }
    });
    m_desktop = new DesktopIntegration(this, IconPainter::icon(IconPainter::Program), m_mnuSysTray);
    connect(&TimedEvents::instance(), &TimedEvents::statusChanged, this, &frmBot::onStatusChanged);
    connect(&SettingsWrapper::instance(), &SettingsWrapper::settingChanged, this,
            &frmBot::onSettingChanged);
    connect(&ThemeEvents::instance(), &ThemeEvents::styleSheetChosen, this, &frmBot::applyTheme);
    connect(&ThemeEvents::instance(), &ThemeEvents::themeLoaded, this, &frmBot::applyBackColor);
    connectPluginRequests();

    m_tmrUpdate = new QTimer(this);
    m_tmrUpdate->setInterval(1000);
    connect(m_tmrUpdate, &QTimer::timeout, this, &frmBot::tmrUpdate_Timer);
    m_tmrUpdate->start();

    LoadFonts();
    applyLayout();
    refreshMenuMarks();
    m_desktop->fader()->SetOpacity(SettingsWrapper::instance().Transparency());
    DisplayProfiles();
    onSlotSelected(table.CurrentIndex());
    onStatusChanged();
}

frmBot::~frmBot() = default;

// What plug-ins ask of the main form that only the window can do.
void frmBot::connectPluginRequests() {
    PluginMainForm& form = PluginMainForm::instance();
    connect(&form, &PluginMainForm::resetRequested, this, &frmBot::tmrUpdate_Timer);
    connect(&form, &PluginMainForm::listRequested, this, [this](const QString& list) {
        SelectedList = list;
        SelectList();
    });
    connect(&form, &PluginMainForm::channelsRequested, this, &frmBot::DisplayChannels);
    connect(&form, &PluginMainForm::fontsRequested, this, &frmBot::LoadFonts);
}

// Menus ---------------------------------------------------------------------

void frmBot::buildMenus() {
    m_mnuChannels = new QMenu(this);
    m_mnuChannels->setObjectName(QStringLiteral("mnuChannels"));
    menuBar()->addMenu(buildBotMenu());
    menuBar()->addMenu(buildViewMenu());
    menuBar()->addMenu(buildWindowMenu());
    menuBar()->addMenu(buildHelpMenu());
    // Rows 4 and 5 of the menu bar skip back and forth in the media player.
    const std::pair<const char*, void (SongWrapper::*)()> songRows[] = {
        {"Previous song", &SongWrapper::BackSong}, {"Next song", &SongWrapper::NextSong}};
    for (int row = 0; row < 2; ++row) {
        auto* action = new QAction(QLatin1String(songRows[row].first), this);
        action->setObjectName(QStringLiteral("guiMenu%1").arg(row + 4));
        connect(action, &QAction::triggered, this,
                [command = songRows[row].second] { (SongWrapper::instance().*command)(); });
        menuBar()->addAction(action);
    }
    buildProfileMenus();
    buildTrayMenu();
}

QMenu* frmBot::buildBotMenu() {
    m_mnuBot = new QMenu(QStringLiteral("&Bot"), this);
    m_mnuBot->setObjectName(QStringLiteral("mnuBot"));
    m_mnuConnect = m_mnuBot->addAction(QStringLiteral("Connect"), this, [this] {
        const int slot = SlotTable::instance().CurrentIndex();
        if (slot == 0) {
            WriteChat(0, Status::Error,
                      QStringLiteral("Cannot connect a socket when console is the active window."));
            return;
        }
        connectSlot(slot);
    });
    m_mnuConnect->setObjectName(QStringLiteral("mnuConnect"));
    m_mnuBot->setDefaultAction(m_mnuConnect);
    m_mnuDisconnect = m_mnuBot->addAction(QStringLiteral("Disconnect"), this, [this] {
        const int slot = SlotTable::instance().CurrentIndex();
        if (slot == 0) {
            WriteChat(0, Status::Error,
                      QStringLiteral(
                          "[BNLS] Cannot disconnect a socket when console is the active window."));
            return;
        }
        disconnectSlot(slot);
    });
    m_mnuDisconnect->setObjectName(QStringLiteral("mnuDisconnect"));
    m_mnuBot->addSeparator();
    QAction* lookup = m_mnuBot->addAction(QStringLiteral("Lookup profile"), this,
                                          [this] { LookupProfile(this); });
    lookup->setObjectName(QStringLiteral("mnuLookupProfile"));
    lookup->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    buildSendMessageActions();
    m_mnuBot->addAction(m_mnuSendMessage);
    m_mnuBot->addAction(m_mnuSendMessage4All);

    QMenu* request = m_mnuBot->addMenu(QStringLiteral("Request"));
    request->setObjectName(QStringLiteral("mnuRequest"));
    const auto onProfile = [this](auto action) {
        return [this, action] {
            const int slot = SlotTable::instance().CurrentIndex();
            if (slot > 0) action(slot);
        };
    };
    request->addAction(
        QStringLiteral("Change E-mail"), this, onProfile([this](int slot) {
            askInTurn(
                this, QStringLiteral("Change E-mail"),
                {{QStringLiteral("Please enter CURRENT e-mail address:"), Bots(slot).RegisterEmail},
                 {QStringLiteral("Please enter NEW e-mail address:"), QString()}},
                [slot](const QStringList& a) {
                    Bots(slot).RegisterEmail = a[0];
                    Bots(slot).NewEmail = a[1];
                    Bots(slot).ChangeEmail = true;
                    SlotTable::instance().ConnectBot(slot);
                });
        }));
    request->addAction(
        QStringLiteral("Change Password"), this, onProfile([this](int slot) {
            askInTurn(
                this, QStringLiteral("Change Password"),
                {{QStringLiteral("Please enter CURRENT password:"), Bots(slot).Config.Password()},
                 {QStringLiteral("Please enter NEW password:"), Bots(slot).NewPassword}},
                [slot](const QStringList& a) {
                    Bots(slot).Config.setPassword(a[0]);
                    Bots(slot).NewPassword = a[1];
                    Bots(slot).ChangePassword = true;
                    SlotTable::instance().ConnectBot(slot);
                });
        }));
    request->addAction(
        QStringLiteral("Forgot Password"), this, onProfile([this](int slot) {
            askInTurn(this, QStringLiteral("Forgot Password"),
                      {{QStringLiteral("Please enter CURRENT e-mail:"), Bots(slot).Config.Email()}},
                      [slot](const QStringList& a) {
                          Bots(slot).RegisterEmail = a[0];
                          Bots(slot).ForgotPassword = true;
                          SlotTable::instance().ConnectBot(slot);
                      });
        }));

    m_mnuBot
        ->addAction(QStringLiteral("Configuration"), this,
                    [this] { openConfiguration(SlotTable::instance().CurrentIndex()); })
        ->setObjectName(QStringLiteral("mnuConfiguration"));

    QMenu* files = m_mnuBot->addMenu(QStringLiteral("Files"));
    files->setObjectName(QStringLiteral("mnuFiles"));
    files->addAction(QStringLiteral("Open Bot Path"), this,
                     [] { QDesktopServices::openUrl(QUrl::fromLocalFile(GetProgramFolder())); });
    files->addAction(QStringLiteral("Open Settings Path"), this,
                     [] { QDesktopServices::openUrl(QUrl::fromLocalFile(GetSettingsPath())); });
    files->addSeparator();
    for (const char* name : {"BlockedUsers", "Definitions", "Macros", "MessageFilters", "Overrides",
                             "Plugins", "Profanity", "Quotes"}) {
        const QString file = QString::fromLatin1(name) + QStringLiteral(".ini");
        files->addAction(file, this, [this, file] { openSettingsFile(file); });
    }
    return m_mnuBot;
}

QMenu* frmBot::buildViewMenu() {
    SettingsWrapper& settings = SettingsWrapper::instance();
    auto* view = new QMenu(QStringLiteral("&View"), this);
    view->setObjectName(QStringLiteral("mnuView"));
    m_mnuControlPanel =
        view->addAction(QStringLiteral("Control Panel"), this, [this] { showControlPanel(); });
    m_mnuControlPanel->setObjectName(QStringLiteral("mnuControlPanel"));
    view->setDefaultAction(m_mnuControlPanel);
    view->addAction(QStringLiteral("Show Bot Console"), this, [this] { selectSlot(0); });
    view->addSeparator();
    const auto toggle = [&](const QString& caption, std::function<void(bool)> set) {
        QAction* action = view->addAction(caption);
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, std::move(set));
        return action;
    };
    m_mnuShowTimestamp = toggle(QStringLiteral("Show Timestamp"),
                                [&settings](bool on) { settings.setTimeStamp(on); });
    m_mnuShowWhisperPanel = toggle(QStringLiteral("Show Whisper Panel"),
                                   [&settings](bool on) { settings.setWhisperPanel(on); });
    m_mnuStartupLoad = toggle(QStringLiteral("Load at Windows Startup"),
                              [&settings](bool on) { settings.setWindowsStartup(on); });
    m_mnuMinimizeToTray =
        toggle(QStringLiteral("Minimize to Tray"), [&settings](bool on) { settings.setTray(on); });
    QMenu* opacity = view->addMenu(QStringLiteral("Opacity"));
    opacity->setObjectName(QStringLiteral("mnuOpacity"));
    m_opacity = new QActionGroup(this);
    for (int percent : {20, 40, 60, 80, 100}) {
        QAction* row = opacity->addAction(QString::number(percent) + u'%');
        row->setCheckable(true);
        row->setData(percent);
        m_opacity->addAction(row);
        connect(row, &QAction::triggered, this,
                [&settings, percent] { settings.setTransparency(percent); });
    }
    m_mnuTheme = view->addMenu(QStringLiteral("Theme"));
    m_mnuTheme->setObjectName(QStringLiteral("mnuTheme"));
    m_mnuTheme
        ->addAction(QStringLiteral("Reload List"), this, [this] { fillThemes(ImportThemes()); })
        ->setObjectName(QStringLiteral("mnuReloadList"));
    m_mnuTheme->addSeparator();
    m_themes = new QActionGroup(this);
    fillThemes(ThemeNames());
    return view;
}

QMenu* frmBot::buildWindowMenu() {
    auto* window = new QMenu(QStringLiteral("&Window"), this);
    window->setObjectName(QStringLiteral("mnuWindow"));
    m_mnuClear = window->addAction(QStringLiteral("Clear"), this, [] {
        const int slot = SlotTable::instance().CurrentIndex();
        rtbChat(slot).clear();
        rtbWhisper(slot).clear();
    });
    m_mnuClear->setObjectName(QStringLiteral("mnuClear"));
    window->setDefaultAction(m_mnuClear);
    m_mnuLocked = window->addAction(QStringLiteral("Locked"));
    m_mnuLocked->setCheckable(true);
    connect(m_mnuLocked, &QAction::triggered, this,
            [](bool on) { SettingsWrapper::instance().setLocked(on); });
    window->addAction(QStringLiteral("Hide/show"), this,
                      [] { DesktopShell::instance().toggleWindow(); })
        ->setObjectName(QStringLiteral("mnuHide"));
    return window;
}

QMenu* frmBot::buildHelpMenu() {
    auto* help = new QMenu(QStringLiteral("&Help"), this);
    help->setObjectName(QStringLiteral("mnuHelp"));
    QAction* about = help->addAction(QStringLiteral("About"), this, [this] {
        auto* box = new QMessageBox(this);
        box->setObjectName(QStringLiteral("frmAbout"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setWindowTitle(QStringLiteral("About Corvantide"));
        box->setIconPixmap(IconPainter::icon(IconPainter::Program).pixmap(64, 64));
        box->setText(QStringLiteral("<b>Corvantide v") + Machine().versionText() +
                     QStringLiteral("</b>"));
        box->setInformativeText(
            QStringLiteral("A chat bot for Battle.net: many profiles in one window, each in "
                           "its own channel.\nBuilt with Qt ") +
            QString::fromLatin1(qVersion()) + u'.');
        box->open();
    });
    help->setDefaultAction(about);
    about->setObjectName(QStringLiteral("mnuAbout"));
    help->addAction(QStringLiteral("Commands"), this, [this] {
        QString cause;
        const QString page = CommandsPage::WriteHtml(&cause);
        if (page.isEmpty())
            WriteChat(0, Status::Error,
                      QStringLiteral("Could not write the list of commands: ") + cause + u'.');
        else
            openHelpPage(page);
    })->setObjectName(QStringLiteral("mnuCommands"));
    for (const auto& [caption, path] : {std::pair{"Homepage", "/"}, {"Support", "/support"}}) {
        const QString where = QString::fromLatin1(path);
        help->addAction(QString::fromLatin1(caption), this, [where] {
            const QUrl address = WebSite::Address(where);
            if (address.isEmpty())
                WriteChat(0, Status::Error,
                          QStringLiteral("No web site is set: the setting WebHost in Settings "
                                         "names it."));
            else
                QDesktopServices::openUrl(address);
        })->setObjectName(QStringLiteral("mnu") + QString::fromLatin1(caption));
    }
    help->addAction(QStringLiteral("ReadMe"), this, [this] {
        // Installed beside the package's other documents; in a build, the
        // checkout's own.
        const QDir program(QCoreApplication::applicationDirPath());
        for (const char* place : {"../share/doc/corvantide/README.md", "../README.md"}) {
            if (program.exists(QString::fromLatin1(place))) {
                openHelpPage(program.absoluteFilePath(QString::fromLatin1(place)));
                return;
            }
        }
        WriteChat(0, Status::Error,
                  QStringLiteral("The ReadMe is not installed beside the program."));
    })->setObjectName(QStringLiteral("mnuReadMe"));
    m_mnuHelp = help;
    return help;
}

void frmBot::openHelpPage(const QString& path) {
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        WriteChat(0, Status::Error,
                  QStringLiteral("No program of this desktop opens ") + path + u'.');
}

// "Send message" and "Send message for all", in the tray's menu and in the
// Bot menu alike (a desktop may have no tray). Their lines are typed lines:
// they take the send queue, so flood control holds for them too.
void frmBot::buildSendMessageActions() {
    m_mnuSendMessage = new QAction(QStringLiteral("Send message"), this);
    m_mnuSendMessage->setObjectName(QStringLiteral("mnuSendMessage"));
    connect(m_mnuSendMessage, &QAction::triggered, this, [this] {
        const int slot = SlotTable::instance().CurrentIndex();
        if (slot == 0) {
            WriteChat(0, Status::Error, QStringLiteral("There is no profile on screen to send to."));
            return;
        }
        askInTurn(this, QStringLiteral("Enter message..."),
                  {{QStringLiteral("Enter message to send for profile: ") + Bots(slot).Profile(),
                    QString()}},
                  [slot](const QStringList& a) {
                      if (Bots(slot).IsLoaded) SendUserLine(slot, a[0]);
                  });
    });
    m_mnuSendMessage4All = new QAction(QStringLiteral("Send message for all"), this);
    m_mnuSendMessage4All->setObjectName(QStringLiteral("mnuSendMessage4All"));
    connect(m_mnuSendMessage4All, &QAction::triggered, this, [this] {
        askInTurn(this, QStringLiteral("Enter message..."),
                  {{QStringLiteral("Enter message to send for all profiles"), QString()}},
                  [](const QStringList& a) {
                      SlotTable& table = SlotTable::instance();
                      for (int i = 1; i <= table.highestIndex(); ++i)
                          if (Bots(i).IsLoaded && Bots(i).Online()) SendUserLine(i, a[0]);
                  });
    });
}

// The tray icon's menu.
void frmBot::buildTrayMenu() {
    m_mnuSysTray = new QMenu(this);
    m_mnuSysTray->setObjectName(QStringLiteral("mnuSysTray"));
    m_mnuSysTray
        ->addAction(QStringLiteral("Restore"), this,
                    [] { DesktopShell::instance().showWindow(); })
        ->setObjectName(QStringLiteral("mnuRestore"));
    m_mnuSysTray->addAction(QStringLiteral("Lookup profile"), this,
                            [this] { LookupProfile(this); });
    m_mnuSysTray->addAction(m_mnuSendMessage);
    m_mnuSysTray->addAction(m_mnuSendMessage4All);
    m_mnuSysTray->addSeparator();
    m_mnuSysTray
        ->addAction(QStringLiteral("Exit"), this,
                    [this] {
                        DesktopShell::instance().showWindow();
                        QTimer::singleShot(0, this, &QWidget::close);
                    })
        ->setObjectName(QStringLiteral("mnuExit"));
}

void frmBot::buildProfileMenus() {
    m_mnuProfileClick = new QMenu(this);
    m_mnuProfileClick->setObjectName(QStringLiteral("mnuProfileClick"));
    m_mnuProfileClick
        ->addAction(QStringLiteral("Configure"), this,
                    [this] { openConfiguration(SlotTable::instance().CurrentIndex()); })
        ->setObjectName(QStringLiteral("mnuProfConfig"));
    m_mnuProfileClick->addSeparator();
    m_mnuProfileClick->addAction(QStringLiteral("Connect"), this,
                                 [this] { connectSlot(SlotTable::instance().CurrentIndex()); });
    m_mnuProfileClick->addAction(QStringLiteral("Disconnect"), this,
                                 [this] { disconnectSlot(SlotTable::instance().CurrentIndex()); });
    m_mnuAlwaysLoad = m_mnuProfileClick->addAction(QStringLiteral("Always Load"));
    m_mnuAlwaysLoad->setCheckable(true);
    connect(m_mnuAlwaysLoad, &QAction::triggered, this, [](bool on) {
        const int slot = SlotTable::instance().CurrentIndex();
        if (slot > 0) Bots(slot).Config.setStartupLoad(on);
    });
    m_mnuProfileClick->addSeparator();
    m_mnuProfileClick->addAction(QStringLiteral("Unload"), this, &frmBot::unloadActive);

    m_mnuProfileAdd = new QMenu(this);
    m_mnuProfileAdd->setObjectName(QStringLiteral("mnuProfileAdd"));
    m_mnuProfiles = m_mnuProfileAdd;
    m_mnuCreateManage =
        m_mnuProfileAdd->addAction(QStringLiteral("Create/Manage ..."), this, [this] {
            auto* manager = new frmConfigManageProfile(this);
            manager->setAttribute(Qt::WA_DeleteOnClose);
            manager->open();
        });
    m_mnuCreateManage->setObjectName(QStringLiteral("mnuCreateManage"));
    m_mnuProfileAdd->addSeparator();
}

void frmBot::DisplayProfiles() {
    // The rows below "Create/Manage ..." and its separator.
    const QList<QAction*> actions = m_mnuProfiles->actions();
    for (qsizetype i = 2; i < actions.size(); ++i)
        delete actions[i];
    const QStringList names = SlotTable::instance().unloadedProfiles();
    if (names.isEmpty()) {
        m_mnuProfiles->addAction(QStringLiteral("-"))->setEnabled(false);
        return;
    }
    for (const QString& name : names) {
        m_mnuProfiles->addAction(name, this, [this, name] {
            SlotTable::instance().LoadProfile(name);
            tmrUpdate_Timer();
        });
    }
}

frmConfig* frmBot::openConfiguration(int slot) {
    auto* form = new frmConfig(slot, this);
    form->setAttribute(Qt::WA_DeleteOnClose);
    connect(form, &frmConfig::controlPanelRequested, this, &frmBot::controlPanelRequested);
    form->open();
    return form;
}

void frmBot::openControlPanel(int row) {
    QWidget* over = QApplication::activeModalWidget();
    if (!over) {
        showControlPanel(row);
        return;
    }
    // A dialog that asked (the profile form wants a database) waits for a
    // panel of its own; the main window's panel would sit behind it, blocked.
    auto* panel = new frmControlPanel(over);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowModality(Qt::WindowModal);
    panel->selectRow(row);
    panel->show();
}

void frmBot::DisplayChannels() {
    m_mnuChannels->clear();
    const int slot = SlotTable::instance().CurrentIndex();
    const QStringList channels = Bots(slot).Channels;
    if (channels.isEmpty()) {
        m_mnuChannels->addAction(QStringLiteral("-"))->setEnabled(false);
        return;
    }
    for (const QString& channel : channels) {
        m_mnuChannels->addAction(channel, this, [slot, channel] {
            SendUserLine(slot, QStringLiteral("/join ") + channel);
        });
    }
}

frmControlPanel* frmBot::showControlPanel(int row) {
    if (!m_controlPanel) m_controlPanel = new frmControlPanel(this);
    m_controlPanel->selectRow(row);
    m_controlPanel->show();
    m_controlPanel->raise();
    m_controlPanel->activateWindow();
    return m_controlPanel;
}

void frmBot::openSettingsFile(const QString& name) {
    // A list file that doesn't exist yet counts as empty: make it, so that the
    // editor has something to open.
    const QString path = GetSettingsPath() + name;
    QFile file(path);
    if (!file.exists() && file.open(QIODevice::WriteOnly)) file.close();
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void frmBot::fillThemes(const QStringList& names) {
    for (QAction* row : m_themes->actions())
        delete row;
    const QString active = ActiveThemeName();
    for (const QString& name : names) {
        QAction* row = m_mnuTheme->addAction(name, this, [name] { ChooseTheme(name); });
        row->setCheckable(true);
        row->setChecked(name == active);
        m_themes->addAction(row);
    }
}

void frmBot::applyTheme(const QString& name) {
    // A theme's style sheet dresses the window; one that can't be read
    // leaves the window as it was.
    const QString sheet = ReadThemeStyleSheet(name);
    if (!sheet.isEmpty()) setStyleSheet(sheet);
    for (QAction* row : m_themes->actions())
        row->setChecked(row->text() == name);
}

void frmBot::applyBackColor() {
    QPalette p = palette();
    p.setColor(QPalette::Window, IconPainter::fromBgr(CurrentTheme().interface.BackColor));
    setPalette(p);
}

void frmBot::connectSlot(int slot) {
    if (slot > 0) SlotTable::instance().ConnectBot(slot);
}

void frmBot::disconnectSlot(int slot) {
    DisconnectBot(slot);
}

// Layout --------------------------------------------------------------------

QWidget* frmBot::buildCentre() {
    auto* centre = new QWidget;
    centre->setObjectName(QStringLiteral("centralWidget"));
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(4, 2, 4, 2);
    column->setSpacing(3);

    m_tabs = new ProfileTabBar;
    m_tabs->guiProfileAdd()->setMenu(nullptr);
    connect(m_tabs->guiProfileAdd(), &QToolButton::clicked, this, [this] {
        m_mnuProfileAdd->popup(
            m_tabs->guiProfileAdd()->mapToGlobal(QPoint(0, m_tabs->guiProfileAdd()->height())));
    });
    connect(m_tabs, &ProfileTabBar::tabReleased, this, &frmBot::onTabReleased);
    connect(m_tabs, &ProfileTabBar::closeClicked, this, &frmBot::unloadActive);
    connect(m_tabs, &ProfileTabBar::overflowChosen, this, [this](const QString& profile) {
        if (const int slot = SlotTable::instance().findProfile(profile)) selectSlot(slot);
        tmrUpdate_Timer();
    });
    column->addWidget(m_tabs);

    auto* chatColumn = new QWidget;
    auto* chatLayout = new QVBoxLayout(chatColumn);
    chatLayout->setContentsMargins(0, 0, 0, 0);
    chatLayout->setSpacing(3);
    auto* chatSplit = new QSplitter(Qt::Vertical);
    m_chatStack = new QStackedWidget;
    m_whisperStack = new QStackedWidget;
    chatSplit->addWidget(m_chatStack);
    chatSplit->addWidget(m_whisperStack);
    chatSplit->setStretchFactor(0, 3);
    chatSplit->setStretchFactor(1, 1);
    chatLayout->addWidget(chatSplit, 1);
    m_send = new SendBox;
    chatLayout->addWidget(m_send);

    m_sidebar = new QWidget;
    m_sidebar->setObjectName(QStringLiteral("guiSidebar"));
    m_sidebar->setMinimumWidth(170);
    auto* side = new QVBoxLayout(m_sidebar);
    side->setContentsMargins(0, 0, 0, 0);
    side->setSpacing(3);
    m_listHeading = new QLabel;
    m_listHeading->setObjectName(QStringLiteral("lblList"));
    m_listHeading->setAlignment(Qt::AlignCenter);
    side->addWidget(m_listHeading);
    m_listStack = new QStackedWidget;
    m_users = new UserListView(UserListView::Kind::Users);
    m_friends = new UserListView(UserListView::Kind::Friends);
    m_clan = new UserListView(UserListView::Kind::Clan);
    for (UserListView* list : {m_users, m_friends, m_clan})
        m_listStack->addWidget(list);
    connect(m_users, &UserListView::whisperRequested, m_send, &SendBox::startWhisper);
    connect(m_users, &UserListView::lineRequested, this,
            [](int slot, const QString& line) { SendUserLine(slot, line); });
    connect(m_users, &UserListView::controlPanelRequested, this, &frmBot::controlPanelRequested);
    connect(this, &frmBot::controlPanelRequested, this, &frmBot::openControlPanel);
    side->addWidget(m_listStack, 1);
    m_listChooser = new QWidget;
    m_listChooser->setObjectName(QStringLiteral("guiToolbarBoxList"));
    auto* chooser = new QHBoxLayout(m_listChooser);
    chooser->setContentsMargins(0, 0, 0, 0);
    const std::pair<const char*, const char*> lists[] = {
        {"User list", "Users"}, {"Friend list", "Friends"}, {"Clan list", "Clan"}};
    for (const auto& [caption, name] : lists) {
        QToolButton* button = toolbarButton(QString::fromLatin1(caption), {});
        const QString selected = QString::fromLatin1(name);
        connect(button, &QToolButton::clicked, this, [this, selected] {
            SelectedList = selected;
            SelectList();
        });
        chooser->addWidget(button);
    }
    m_listChooser->hide();
    side->addWidget(m_listChooser);

    m_splitter = new QSplitter(Qt::Horizontal);
    m_splitter->addWidget(chatColumn);
    m_splitter->addWidget(m_sidebar);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 0);
    m_splitter->setSizes({700, 230});
    m_splitter->setChildrenCollapsible(false);
    column->addWidget(m_splitter, 1);

    m_panels = new FoldOutPanels(m_mnuChannels);
    column->addWidget(m_panels);
    return centre;
}

void frmBot::buildStatusBar() {
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblStatus"));
    statusBar()->addWidget(m_status, 1);
    m_lblUsers = new QLabel;
    m_lblUsers->setObjectName(QStringLiteral("lblUsers"));
    statusBar()->addPermanentWidget(m_lblUsers);
    const char* const rows[] = {"Information", "Clan",    "Channels", "Music",
                                "Plugins",     "Sidebar", "Lists"};
    for (int row = 0; row < 7; ++row) {
        QToolButton* button =
            toolbarButton(QString::fromLatin1(rows[row]), QStringLiteral("guiToolbar%1").arg(row));
        connect(button, &QToolButton::clicked, this, [this, row] { guiToolbar(row); });
        statusBar()->addPermanentWidget(button);
    }
}

void frmBot::addSlotViews(int index) {
    while (int(m_chats.size()) <= index) {
        const int slot = int(m_chats.size());
        auto* chat = new ChatView(rtbChat(slot));
        chat->setObjectName(QStringLiteral("rtbChat%1").arg(slot));
        auto* whisper = new ChatView(rtbWhisper(slot));
        whisper->setObjectName(QStringLiteral("rtbWhisper%1").arg(slot));
        for (ChatView* view : {chat, whisper}) {
            view->setFont(m_chats.empty() ? pickFont(SettingsWrapper::instance().ChatFont(),
                                                     SettingsWrapper::instance().ChatSize())
                                          : m_chats.front()->font());
        }
        m_chats.push_back(chat);
        m_whispers.push_back(whisper);
        m_chatStack->addWidget(chat);
        m_whisperStack->addWidget(whisper);
    }
}

ChatView* frmBot::chatView(int slot) const {
    return slot >= 0 && slot < int(m_chats.size()) ? m_chats[size_t(slot)] : nullptr;
}

ChatView* frmBot::whisperView(int slot) const {
    return slot >= 0 && slot < int(m_whispers.size()) ? m_whispers[size_t(slot)] : nullptr;
}

void frmBot::applyLayout() {
    const SettingsWrapper& settings = SettingsWrapper::instance();
    m_sidebar->setVisible(settings.Sidebar());
    m_whisperStack->setVisible(settings.WhisperPanel());
    SelectList();
}

void frmBot::SelectList() {
    UserListView* shown = m_users;
    if (SelectedList == QLatin1String("Friends"))
        shown = m_friends;
    else if (SelectedList == QLatin1String("Clan"))
        shown = m_clan;
    else
        SelectedList = QStringLiteral("Users");
    m_listStack->setCurrentWidget(shown);
    updateListHeading();
}

void frmBot::guiToolbar(int row) {
    if (row < FoldOutPanels::PanelCount) {
        m_panels->toggle(row);
    } else if (row == 5) {
        SettingsWrapper& settings = SettingsWrapper::instance();
        settings.setSidebar(!settings.Sidebar());
    } else if (row == 6) {
        m_listChooser->setVisible(m_listChooser->isHidden());
    }
}

void frmBot::LoadFonts() {
    // Reading a font the host lacks announces the setting again; that must
    // not start another round.
    if (m_applyingFonts) return;
    m_applyingFonts = true;
    const SettingsWrapper& settings = SettingsWrapper::instance();
    const QFont chat = pickFont(settings.ChatFont(), settings.ChatSize());
    const QFont list = pickFont(settings.ListFont(), settings.ListSize());
    const QFont text = pickFont(settings.TextFont(), settings.TextSize());
    for (ChatView* view : m_chats)
        view->setFont(chat);
    for (ChatView* view : m_whispers)
        view->setFont(chat);
    for (UserListView* view : {m_users, m_friends, m_clan})
        view->setFont(list);
    m_send->setFont(text);
    m_applyingFonts = false;
}

void frmBot::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    SelectList();
}

// Slots and status ------------------------------------------------------------

void frmBot::selectSlot(int index) {
    SlotTable::instance().SelectBot(index);
}

void frmBot::onSlotSelected(int index) {
    if (index >= int(m_chats.size())) addSlotViews(index);
    m_chatStack->setCurrentWidget(m_chats[size_t(index)]);
    m_whisperStack->setCurrentWidget(m_whispers[size_t(index)]);
    for (UserListView* view : {m_users, m_friends, m_clan})
        view->showSlot(index);
    SelectList();
    m_panels->showSlot(index);
    if (index > 0) {
        // Read and written back, so that the profile's menu marks agree with
        // the store.
        ConfigWrapper& config = Bots(index).Config;
        config.setStartupLoad(config.StartupLoad());
        config.setStalk(config.Stalk());
        m_mnuAlwaysLoad->setChecked(config.StartupLoad());
    }
    DisplayChannels();
    TimedEvents::instance().statusTick();
    tmrUpdate_Timer();
}

void frmBot::onTabReleased(int slot, Qt::MouseButton button, const QPoint& globalPos) {
    selectSlot(slot);
    tmrUpdate_Timer();
    if (button == Qt::RightButton && slot > 0) m_mnuProfileClick->popup(globalPos);
}

void frmBot::onSlotRenamed(int index) {
    // The tab shows the new name, and the menus list it in place of the old.
    m_tabs->rebuildNow();
    DisplayProfiles();
    if (index == SlotTable::instance().CurrentIndex()) onSlotSelected(index);
}

void frmBot::unloadActive() {
    const int slot = SlotTable::instance().CurrentIndex();
    if (slot > 0) SlotTable::instance().UnloadProfile(Bots(slot).Profile());
    tmrUpdate_Timer();
}

void frmBot::tmrUpdate_Timer() {
    m_tabs->tmrUpdate_Timer();
    updateListHeading();
}

void frmBot::updateListHeading() {
    const int slot = SlotTable::instance().CurrentIndex();
    const BotElement& bot = Bots(slot);
    QString heading;
    if (!bot.Online())
        heading = QStringLiteral(" -- Disconnected -- ");
    else if (SelectedList == QLatin1String("Friends"))
        heading = QStringLiteral(" -- Friends (") + QString::number(lvFriends(slot).count()) +
                  QStringLiteral(") -- ");
    else if (SelectedList == QLatin1String("Clan"))
        heading = QStringLiteral(" -- Clan ") + ClanPacket::ShowClanTag(bot.ClanTag()) +
                  QStringLiteral(" (") + QString::number(lvClan(slot).count()) +
                  QStringLiteral(") -- ");
    else
        heading = QStringLiteral(" -- ") + bot.Channel() + QStringLiteral(" (") +
                  QString::number(lvUsers(slot).count()) + QStringLiteral(") -- ");
    if (m_listHeading->text() != heading) m_listHeading->setText(heading);
}

void frmBot::onStatusChanged() {
    const TimedEvents& timers = TimedEvents::instance();
    m_status->setText(timers.StatusLine());
    if (!timers.Caption().isEmpty()) setWindowTitle(timers.Caption());
    m_mnuConnect->setText(timers.ConnectLabel().isEmpty() ? QStringLiteral("Connect")
                                                          : timers.ConnectLabel());
}

void frmBot::onSettingChanged(const QString& property) {
    static const QStringList fonts{QStringLiteral("ChatFont"), QStringLiteral("ChatSize"),
                                   QStringLiteral("ListFont"), QStringLiteral("ListSize"),
                                   QStringLiteral("TextFont"), QStringLiteral("TextSize")};
    if (fonts.contains(property)) {
        LoadFonts();
    } else if (property == QLatin1String("WhisperPanel") || property == QLatin1String("Sidebar")) {
        applyLayout();
    } else if (property == QLatin1String("Transparency")) {
        m_desktop->fader()->SetOpacity(SettingsWrapper::instance().Transparency());
    }
    refreshMenuMarks();
}

void frmBot::refreshMenuMarks() {
    const SettingsWrapper& settings = SettingsWrapper::instance();
    m_mnuShowTimestamp->setChecked(settings.TimeStamp());
    m_mnuShowWhisperPanel->setChecked(settings.WhisperPanel());
    m_mnuStartupLoad->setChecked(settings.WindowsStartup());
    m_mnuMinimizeToTray->setChecked(settings.Tray());
    m_mnuLocked->setChecked(settings.Locked());
    const int percent = settings.Transparency();
    for (QAction* row : m_opacity->actions())
        row->setChecked(row->data().toInt() == percent);
}

void frmBot::showMessageBox(const QString& title, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    // Before the window shows (a failed start) the box must be read before
    // the process ends.
    if (isVisible())
        box->open();
    else
        box->exec();
}

void frmBot::closeEvent(QCloseEvent* event) {
    if (confirmClose &&
        QMessageBox::question(this, QStringLiteral("Close Corvantide?"),
                              QStringLiteral("Are you sure you want to close Corvantide?"),
                              QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                              QMessageBox::No) != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    // The window fades out first, then closes for good.
    if (isVisible() && !m_desktop->fader()->FadeDone()) {
        event->ignore();
        m_desktop->FadeOutThen([this] {
            confirmClose = false;
            close();
        });
        return;
    }
    event->accept();
    Q_EMIT closedForGood();
}
