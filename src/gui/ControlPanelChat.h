#pragma once

#include "gui/SettingsPanelPage.h"

// "Chat settings:": what the chat view hides, how texts are decoded, and
// what becomes of colour codes in them.
class ControlPanelChat : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelChat(QWidget* parent = nullptr);
};
