#pragma once

#include "gui/ControlPanelPage.h"

// The panel of a heading row ("Connection", "Display", "Manage"): a title and
// a hint to choose one of the rows below it. Nothing to load or save.
class ControlPanelHeading : public ControlPanelPage {
    Q_OBJECT
public:
    ControlPanelHeading(const QString& title, const QString& hint, QWidget* parent = nullptr);

    void load() override {}
    bool save() override { return true; }
    bool hasSaveAndCancel() const override { return false; }
};
