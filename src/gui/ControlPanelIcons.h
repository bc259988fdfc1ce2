#pragma once

#include "gui/SettingsPanelPage.h"

// "Icon settings:": which users' stats icons the user list shows, and
// whether numbers are drawn on them. A save draws the lists anew.
class ControlPanelIcons : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelIcons(QWidget* parent = nullptr);
    bool save() override;
};
