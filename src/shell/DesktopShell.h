#pragma once

#include <QObject>

// What the core asks of the desktop side of the program: to end, to hide and
// show the main window, or to put text on the clipboard. The window (or the terminal run) listens;
// the core only asks and keeps the hidden flag, so it never needs a widget.
class DesktopShell : public QObject {
    Q_OBJECT
public:
    static DesktopShell& instance();

    // The main window is hidden (by a command or the hot key).
    bool WindowHidden() const { return m_windowHidden; }

    void requestQuit() { Q_EMIT quitRequested(); }
    // A game or channel name the user may want to paste into the game.
    void copyToClipboard(const QString& text) { Q_EMIT clipboardTextOffered(text); }
    void hideWindow();
    void showWindow();

Q_SIGNALS:
    void quitRequested();
    void windowVisibilityRequested(bool visible);
    void clipboardTextOffered(const QString& text);

private:
    DesktopShell() = default;
    bool m_windowHidden = false;
};
