#pragma once

#include "gui/SettingsPanelPage.h"

// "Blocked Users:": BlockedUsers.ini, one name or pattern a line. A save
// replaces the file, and the lists and the status line follow at once.
class ControlPanelBlocks : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelBlocks(QWidget* parent = nullptr);
};
