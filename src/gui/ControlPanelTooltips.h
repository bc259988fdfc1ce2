#pragma once

#include "gui/SettingsPanelPage.h"

// "Tooltip Settings:": the tray tips, a master switch and the events that
// raise one.
class ControlPanelTooltips : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelTooltips(QWidget* parent = nullptr);
};
