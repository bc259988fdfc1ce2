#pragma once

#include <QObject>

// What the core asks of the desktop side of the program: to end, or to hide
// and show the main window. The window (or the terminal run) listens; the core
// only asks and keeps the hidden flag, so it never needs a widget.
class DesktopShell : public QObject {
    Q_OBJECT
public:
    static DesktopShell& instance();

    // The main window is hidden (by a command or the hot key).
    bool WindowHidden() const { return m_windowHidden; }

    void requestQuit() { Q_EMIT quitRequested(); }
    void hideWindow();
    void showWindow();

Q_SIGNALS:
    void quitRequested();
    void windowVisibilityRequested(bool visible);

private:
    DesktopShell() = default;
    bool m_windowHidden = false;
};
