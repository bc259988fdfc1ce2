#pragma once

#include "gui/SettingsPanelPage.h"

// "Filters:": the flood filter's interval and MessageFilters.ini, one
// pattern a line. Both count from the next chat line on.
class ControlPanelFilters : public SettingsPanelPage {
    Q_OBJECT
public:
    explicit ControlPanelFilters(QWidget* parent = nullptr);

    // FloodMode for each row of h3dFlood, in order.
    static const QList<qint32>& FloodIntervals();
};
