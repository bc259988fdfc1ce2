#pragma once

#include "gui/SettingsPanelPage.h"

// "Web page settings:": the port and address of the page that shows and
// steers the running bot from a browser, and the token a page needs.
class ControlPanelWeb : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelWeb(QWidget* parent = nullptr);
};
