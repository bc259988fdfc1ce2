#pragma once

#include "gui/SettingsPanelPage.h"

// "Hashing settings:": whether the version check of Diablo II and WarCraft
// III is worked out here, from the game files in the folders given, or asked
// of a BNLS server.
class ControlPanelHashing : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelHashing(QWidget* parent = nullptr);
};
