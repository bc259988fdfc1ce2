#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <vector>

class ChatView;
class DesktopIntegration;
class FoldOutPanels;
class ProfileTabBar;
class QAction;
class QActionGroup;
class QLabel;
class QMenu;
class QSplitter;
class QStackedWidget;
class QTimer;
class QToolButton;
class SendBox;
class frmConfig;
class UserListView;
class frmControlPanel;

// The main window. It shows the slot on screen (its chat, whisper panel and
// lists), the tabs of all slots, the input box, the fold-out panels and the
// status line, and turns menus, clicks and keys into calls on the core.
// Everything it shows comes from the slot table, the timers and the
// settings; it keeps nothing of its own that a run without it would need.
class frmBot : public QMainWindow {
    Q_OBJECT
public:
    explicit frmBot(QWidget* parent = nullptr);
    ~frmBot() override;

    // The tab strip's timer: tabs, close button and list heading.
    void tmrUpdate_Timer();
    // Shows the list named by SelectedList; anything but "Friends" and
    // "Clan" is the user list.
    void SelectList();
    // Fills the channels menu with the active slot's channel list.
    void DisplayChannels();
    // Fills the menu of profiles that are stored but not loaded.
    void DisplayProfiles();
    // Applies the chat, list and text fonts, with the desktop's fonts for
    // families this host lacks.
    void LoadFonts();
    // Opens or closes a fold-out panel (0 to 4), flips the sidebar (5) or
    // the list chooser (6).
    void guiToolbar(int row);

    QString SelectedList = QStringLiteral("Users");
    // Whether closing the window asks first.
    bool confirmClose = true;

    // The window's parts, for the program and its tests.
    ProfileTabBar* tabBar() const { return m_tabs; }
    SendBox* cboSend() const { return m_send; }
    UserListView* userList() const { return m_users; }
    ChatView* chatView(int slot) const;
    ChatView* whisperView(int slot) const;
    FoldOutPanels* panels() const { return m_panels; }
    QLabel* lblList() const { return m_listHeading; }
    QLabel* lblStatus() const { return m_status; }
    QMenu* mnuBot() const { return m_mnuBot; }
    QMenu* mnuProfileClick() const { return m_mnuProfileClick; }
    QMenu* mnuProfiles() const { return m_mnuProfiles; }
    QMenu* mnuChannels() const { return m_mnuChannels; }
    QMenu* mnuTheme() const { return m_mnuTheme; }
    QAction* mnuConnect() const { return m_mnuConnect; }
    QAction* mnuDisconnect() const { return m_mnuDisconnect; }
    QAction* mnuClear() const { return m_mnuClear; }
    QWidget* sidebar() const { return m_sidebar; }
    QLabel* lblUsers() const { return m_lblUsers; }
    QMenu* mnuSysTray() const { return m_mnuSysTray; }
    QMenu* mnuHelp() const { return m_mnuHelp; }
    DesktopIntegration* desktop() const { return m_desktop; }

    // The profile form, on the profile of that slot when it has one.
    frmConfig* openConfiguration(int slot);
    // The control panel on a row of its list; every request for it (the
    // user list's menu, the profile form's databases) comes here.
    void openControlPanel(int row);
    QMenu* mnuProfileAdd() const { return m_mnuProfileAdd; }
    // Opens the control panel on a row and brings it to the front; one
    // window serves the whole program.
    frmControlPanel* showControlPanel(int row = 0);
    QAction* mnuControlPanel() const { return m_mnuControlPanel; }

    // The menu commands that act on a slot.
    void connectSlot(int slot);
    void disconnectSlot(int slot);

    // The least size of the window.
    static constexpr QSize kMinimumSize{533, 400};

Q_SIGNALS:
    // The user list asks for the control panel, opened on that row.
    void controlPanelRequested(int row);
    // The user agreed to close (or a command asked): the program ends.
    void closedForGood();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildMenus();
    void connectPluginRequests();
    QMenu* buildBotMenu();
    QMenu* buildViewMenu();
    QMenu* buildWindowMenu();
    QMenu* buildHelpMenu();
    void buildSendMessageActions();
    void buildTrayMenu();
    void openHelpPage(const QString& path);
    void buildProfileMenus();
    QWidget* buildCentre();
    void buildStatusBar();
    void addSlotViews(int index);
    void onSlotSelected(int index);
    void onSettingChanged(const QString& property);
    void onStatusChanged();
    void onSlotRenamed(int index);
    void onTabReleased(int slot, Qt::MouseButton button, const QPoint& globalPos);
    void selectSlot(int index);
    void unloadActive();
    void showMessageBox(const QString& title, const QString& text);
    void applyLayout();
    void refreshMenuMarks();
    void updateListHeading();
    void openSettingsFile(const QString& name);
    // The rows of the theme menu, one per style sheet, the active one marked.
    void fillThemes(const QStringList& names);
    void applyTheme(const QString& name);
    void applyBackColor();

    ProfileTabBar* m_tabs = nullptr;
    QStackedWidget* m_chatStack = nullptr;
    QStackedWidget* m_whisperStack = nullptr;
    std::vector<ChatView*> m_chats;
    std::vector<ChatView*> m_whispers;
    SendBox* m_send = nullptr;
    QSplitter* m_splitter = nullptr;
    QWidget* m_sidebar = nullptr;
    QLabel* m_listHeading = nullptr;
    QStackedWidget* m_listStack = nullptr;
    UserListView* m_users = nullptr;
    UserListView* m_friends = nullptr;
    UserListView* m_clan = nullptr;
    QWidget* m_listChooser = nullptr;
    FoldOutPanels* m_panels = nullptr;
    QLabel* m_status = nullptr;
    QLabel* m_lblUsers = nullptr;
    QTimer* m_tmrUpdate = nullptr;
    bool m_applyingFonts = false;

    QMenu* m_mnuBot = nullptr;
    QMenu* m_mnuHelp = nullptr;
    QMenu* m_mnuSysTray = nullptr;
    QAction* m_mnuSendMessage = nullptr;
    QAction* m_mnuSendMessage4All = nullptr;
    DesktopIntegration* m_desktop = nullptr;
    QMenu* m_mnuProfileClick = nullptr;
    QMenu* m_mnuProfileAdd = nullptr;
    QMenu* m_mnuProfiles = nullptr;
    QMenu* m_mnuChannels = nullptr;
    QAction* m_mnuCreateManage = nullptr;
    QAction* m_mnuConnect = nullptr;
    QAction* m_mnuDisconnect = nullptr;
    QAction* m_mnuClear = nullptr;
    QAction* m_mnuControlPanel = nullptr;
    QPointer<frmControlPanel> m_controlPanel;
    QAction* m_mnuShowTimestamp = nullptr;
    QAction* m_mnuShowWhisperPanel = nullptr;
    QAction* m_mnuStartupLoad = nullptr;
    QAction* m_mnuMinimizeToTray = nullptr;
    QAction* m_mnuLocked = nullptr;
    QAction* m_mnuAlwaysLoad = nullptr;
    QActionGroup* m_opacity = nullptr;
    QMenu* m_mnuTheme = nullptr;
    QActionGroup* m_themes = nullptr;
};
