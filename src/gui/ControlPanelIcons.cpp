#include "gui/ControlPanelIcons.h"

#include "chat/ChannelView.h"
#include "config/SettingsWrapper.h"

#include <QBoxLayout>
#include <QRadioButton>
#include <algorithm>

using S = SettingsWrapper;

ControlPanelIcons::ControlPanelIcons(QWidget* parent)
    : SettingsPanelPage(QStringLiteral("Icon settings:"), parent) {
    SettingsWrapper& settings = SettingsWrapper::instance();
    for (QRadioButton* option : addOptions(
             {{"h2bNone", "No stats icons"},
              {"h2bSame", "Show stats icons for same client"},
              {"h2bAll", "Show all stats icons"}},
             [&settings] { return settings.IconDisp(); },
             [&settings](int chosen) { settings.setIconDisp(std::max(chosen, 0)); }))
        body()->addWidget(option);
    addChecks({{"h2bDraw", "Draw numbers on icons", &S::IconDraw, &S::setIconDraw}});
    body()->addStretch(1);
}

bool ControlPanelIcons::save() {
    const bool saved = SettingsPanelPage::save();
    channelview::RefreshUserLists();
    return saved;
}
