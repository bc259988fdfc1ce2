#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class HideHotkey;
class QIcon;
class QMenu;
class QWidget;
class TrayIcon;
class WindowFader;

// The links between the main window and the desktop: the tray icon and its
// tips, the flash, the hot key, the fades, and hiding to the tray when the
// window is minimised. It answers what the core asks through DesktopShell
// and tells the core whether the window is out of sight in the tray.
class DesktopIntegration : public QObject {
    Q_OBJECT
public:
    // `trayMenu` is the tray icon's menu. `trayAvailable` is whether the
    // desktop has a notification area (asked of the desktop unless given).
    DesktopIntegration(QWidget* window, const QIcon& icon, QMenu* trayMenu);
    DesktopIntegration(QWidget* window, const QIcon& icon, QMenu* trayMenu, bool trayAvailable);

    bool TrayAvailable() const { return m_trayAvailable; }
    bool FlashActive() const { return m_flashActive; }
    TrayIcon* tray() const { return m_tray; }
    HideHotkey* hotkey() const { return m_hotkey; }
    WindowFader* fader() const { return m_fader; }

    // mnuRestore: the window back from the tray or the task bar.
    void Restore();
    // The window shows, fading in to the opacity of the setting.
    void ShowWithFade();
    // Fades the window out and then calls `then`.
    void FadeOutThen(std::function<void()> then);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FlashBotWindow();
    void StopFlash();
    void setVisible(bool visible);
    void updateInTray();

    QPointer<QWidget> m_window;
    TrayIcon* m_tray;
    HideHotkey* m_hotkey;
    WindowFader* m_fader;
    bool m_trayAvailable;
    bool m_flashActive = false;
};
