#pragma once

#include "gui/SettingsPanelPage.h"

// "Font Settings:": font and size of the chat views, of the lists and of the
// input box, each with an example. A save applies them at once.
class ControlPanelFonts : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelFonts(QWidget* parent = nullptr);

    // The sizes offered; any other can be typed.
    static const QList<int>& Sizes();

private:
    struct Group;
    void addGroup(const Group& group);
};
