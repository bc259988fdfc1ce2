#pragma once

#include <QWidget>

// One panel of the control panel: it shows what is stored when loaded and
// stores what it shows when saved. The control panel gives every panel its
// Save and Cancel; Cancel loads again, which throws edits away.
class ControlPanelPage : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;
    // Shows what is stored now; run each time the panel's row is chosen.
    virtual void load() = 0;
    // Stores what the panel shows. False when something could not be saved;
    // the panel has then said what and why.
    virtual bool save() = 0;
    // Heading panels ("Connection", "Display", "Manage") have nothing to save.
    virtual bool hasSaveAndCancel() const { return true; }
};
