#include "desktop/DesktopIntegration.h"

#include "config/SettingsWrapper.h"
#include "desktop/HideHotkey.h"
#include "desktop/TrayIcon.h"
#include "desktop/WindowFader.h"
#include "shell/DesktopShell.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

DesktopIntegration::DesktopIntegration(QWidget* window, const QIcon& icon, QMenu* trayMenu)
    : DesktopIntegration(window, icon, trayMenu, TrayIcon::Available()) {}

DesktopIntegration::DesktopIntegration(QWidget* window, const QIcon& icon, QMenu* trayMenu,
                                       bool trayAvailable)
    : QObject(window), m_window(window), m_tray(new TrayIcon(icon, trayMenu, this)),
      m_hotkey(new HideHotkey(this)), m_fader(new WindowFader(window)),
      m_trayAvailable(trayAvailable) {
    DesktopShell& shell = DesktopShell::instance();
    connect(&shell, &DesktopShell::trayIconRequested, this, [this](bool present) {
        if (!present)
            m_tray->RemoveTrayIcon();
        else if (m_trayAvailable)
            m_tray->AddTrayIcon();
    });
    connect(&shell, &DesktopShell::hideHotkeyRequested, this, [this](bool registered) {
        if (registered)
            m_hotkey->RegisterHideHotkey();
        else
            m_hotkey->UnregisterHideHotkey();
    });
    connect(&shell, &DesktopShell::flashRequested, this, &DesktopIntegration::FlashBotWindow);
    connect(&shell, &DesktopShell::balloonRequested, m_tray, &TrayIcon::ShowBalloon);
    // A command may ask inside a socket event: the window acts once it is over.
    connect(&shell, &DesktopShell::windowVisibilityRequested, this, &DesktopIntegration::setVisible,
            Qt::QueuedConnection);
    connect(m_hotkey, &HideHotkey::activated, &shell, &DesktopShell::toggleWindow);
    connect(m_tray, &TrayIcon::restoreRequested, this, &DesktopIntegration::Restore);
    window->installEventFilter(this);
}

void DesktopIntegration::Restore() {
    DesktopShell::instance().showWindow();
}

void DesktopIntegration::setVisible(bool visible) {
    if (!m_window) return;
    if (visible) {
        m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
        m_window->show();
        m_window->raise();
        m_window->activateWindow();
    } else if (m_trayAvailable) {
        m_window->hide();
    } else {
        // Hidden with no tray to come back from, the window could only be
        // found again by the hot key: it goes to the task bar instead.
        m_window->showMinimized();
    }
    updateInTray();
}

void DesktopIntegration::ShowWithFade() {
    m_fader->FadeIn();
    m_window->show();
}

void DesktopIntegration::FadeOutThen(std::function<void()> then) {
    m_fader->FadeOut(std::move(then));
}

void DesktopIntegration::FlashBotWindow() {
    if (!m_window || m_window->isActiveWindow()) return;
    // Until the user comes back to the window; a second request changes
    // nothing that shows.
    if (!m_flashActive) QApplication::alert(m_window, 0);
    m_flashActive = true;
}

void DesktopIntegration::StopFlash() {
    m_flashActive = false;
}

void DesktopIntegration::updateInTray() {
    const bool away = !m_window->isVisible() || (!m_trayAvailable && m_window->isMinimized());
    DesktopShell::instance().setWindowInTray(away);
}

bool DesktopIntegration::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_window) return false;
    switch (event->type()) {
    case QEvent::WindowStateChange:
        // Minimised with Tray on, the window goes to the tray; without a
        // tray it stays on the task bar.
        if (m_window->isMinimized() && m_trayAvailable && SettingsWrapper::instance().Tray())
            QTimer::singleShot(0, this, [this] { DesktopShell::instance().hideWindow(); });
        updateInTray();
        break;
    case QEvent::Show:
    case QEvent::Hide:
        updateInTray();
        break;
    case QEvent::WindowActivate:
    case QEvent::MouseMove:
        if (m_flashActive) StopFlash();
        break;
    default:
        break;
    }
    return false;
}
