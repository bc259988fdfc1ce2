#include "gui/ControlPanelAutomated.h"

#include "config/SettingsWrapper.h"

#include <QBoxLayout>

using S = SettingsWrapper;

ControlPanelAutomated::ControlPanelAutomated(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Automated settings:"), parent) {
    addChecks({
        {"h1aNews", "Request the server's news after entering chat", &S::RequestNews,
         &S::setRequestNews},
        {"h1aKeys", "Request and show the profile and account keys at login", &S::RequestKeys,
         &S::setRequestKeys},
        {"h1aConnect", "Show how long the connection took", &S::ShowConnectTime,
         &S::setShowConnectTime},
        {"h1aAdvanced", "Show advanced connection information", &S::ShowAdvanced,
         &S::setShowAdvanced},
    });
    body()->addStretch(1);
}
