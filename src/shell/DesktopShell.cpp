#include "shell/DesktopShell.h"

namespace {

// The notification area's limits, in characters of the text.
constexpr int kBalloonTitleLength = 64;
constexpr int kBalloonTextLength = 256;

} // namespace

DesktopShell& DesktopShell::instance() {
    static DesktopShell shell;
    return shell;
}

void DesktopShell::hideWindow() {
    m_windowHidden = true;
    Q_EMIT windowVisibilityRequested(false);
}

void DesktopShell::showWindow() {
    m_windowHidden = false;
    Q_EMIT windowVisibilityRequested(true);
}

void DesktopShell::toggleWindow() {
    if (m_windowHidden)
        showWindow();
    else
        hideWindow();
}

void DesktopShell::ShowBalloon(const QString& title, const QString& text) {
    Q_EMIT balloonRequested(title.left(kBalloonTitleLength), text.left(kBalloonTextLength));
}
