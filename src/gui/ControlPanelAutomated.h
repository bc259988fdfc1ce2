#pragma once

#include "gui/SettingsPanelPage.h"

// "Automated settings:": what the bot asks for and shows on its own while it
// connects.
class ControlPanelAutomated : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelAutomated(QWidget* parent = nullptr);
};
