#include "shell/DesktopShell.h"

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
