#pragma once

#include <QObject>
#include <QString>

// What the core asks of the desktop side of the program: to end, to hide and
// show the main window, to put text on the clipboard, to draw the user back
// with a flash or a tray tip, and when to bring up the tray, the hot key and
// the web site's reads. The window's desktop services (or nothing, in a run
// on the terminal) listen; the core only asks and keeps the two flags it
// decides by, so it never needs a widget.
class DesktopShell : public QObject {
    Q_OBJECT
public:
    static DesktopShell& instance();

    // The main window is hidden (by a command or the hot key).
    bool WindowHidden() const { return m_windowHidden; }
    // The main window is out of sight in the tray (or, on a desktop without
    // one, minimised): tray tips are shown only then.
    bool WindowInTray() const { return m_windowInTray; }
    void setWindowInTray(bool inTray) { m_windowInTray = inTray; }

    void requestQuit() { Q_EMIT quitRequested(); }
    // A game or channel name the user may want to paste into the game.
    void copyToClipboard(const QString& text) { Q_EMIT clipboardTextOffered(text); }
    void hideWindow();
    void showWindow();
    // The hot key and the window menu's "Hide/show".
    void toggleWindow();

    void FlashBotWindow() { Q_EMIT flashRequested(); }
    // Tray tip of the information kind; a long title or text is cut as the
    // notification area would cut it.
    void ShowBalloon(const QString& title, const QString& text);

    // Start-up and shutdown hand these to the desktop services.
    void AddTrayIcon() { Q_EMIT trayIconRequested(true); }
    void RemoveTrayIcon() { Q_EMIT trayIconRequested(false); }
    void RegisterHideHotkey() { Q_EMIT hideHotkeyRequested(true); }
    void UnregisterHideHotkey() { Q_EMIT hideHotkeyRequested(false); }
    void RefreshUsersOnline() { Q_EMIT usersOnlineRequested(); }
    void CheckForUpdates() { Q_EMIT updateCheckRequested(); }
    // The window's own steps: its fonts and the properties of its controls
    // at start, and the end of its other forms at the stop.
    void LoadFonts() { Q_EMIT fontsRequested(); }
    void ApplyControlProperties() { Q_EMIT controlPropertiesRequested(); }
    void KillForms() { Q_EMIT formsKillRequested(); }

Q_SIGNALS:
    void quitRequested();
    void windowVisibilityRequested(bool visible);
    void clipboardTextOffered(const QString& text);
    void flashRequested();
    void balloonRequested(const QString& title, const QString& text);
    void trayIconRequested(bool present);
    void hideHotkeyRequested(bool registered);
    void usersOnlineRequested();
    void updateCheckRequested();
    void fontsRequested();
    void controlPropertiesRequested();
    void formsKillRequested();

private:
    DesktopShell() = default;
    bool m_windowHidden = false;
    bool m_windowInTray = false;
};
