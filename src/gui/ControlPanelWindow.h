#pragma once

#include "gui/SettingsPanelPage.h"

// "Window Settings:": flashing of the window, a master switch and the events
// that flash it; the chat log; and starting with the desktop session.
class ControlPanelWindow : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelWindow(QWidget* parent = nullptr);
};
