#pragma once

#include "gui/SettingsPanelPage.h"

// "Manage Macros:": Macros.ini as it stands. A save replaces the file and
// the macros are read from it at once.
class ControlPanelMacros : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelMacros(QWidget* parent = nullptr);
};
