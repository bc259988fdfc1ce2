#pragma once

#include "gui/SettingsPanelPage.h"

// "Media Settings:": the player the bot shows and controls, and where each
// player's program lies.
class ControlPanelMedia : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelMedia(QWidget* parent = nullptr);

    // The stored names of the players, in the order of the options.
    static const QStringList& PlayerNames();
};
