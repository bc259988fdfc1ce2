#pragma once

#include "gui/ControlPanelPage.h"

class QCheckBox;
class QLabel;
class QListView;
class QListWidget;
class QPushButton;
class QSpinBox;

// "Manage Plugins:": the plug-in files of the Plugins folder, whether each
// loads at start, its description, and starting or stopping it now. Below,
// the entries that running plug-ins offer; a double click hands one to its
// plug-in. At the foot, the memory each script or plug-in may use.
class ControlPanelPlugins : public ControlPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelPlugins(QWidget* parent = nullptr);

    void load() override;
    // Every choice here is stored when it is made.
    bool save() override { return true; }
    bool hasSaveAndCancel() const override { return false; }

private:
    void showPlugin();
    void toggleAutoLoad(bool on);
    void startOrStop();
    QString selectedPlugin() const;

    QListWidget* m_plugins;
    QPushButton* m_action;
    QCheckBox* m_auto;
    QLabel* m_description;
    QListView* m_options;
    QSpinBox* m_memoryLimit;
};
