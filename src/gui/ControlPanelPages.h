#pragma once

class ControlPanelPage;
class QWidget;

// The panel of a row of the control panel's list (0 to 17), made when the
// row is first chosen.
ControlPanelPage* CreateControlPanelPage(int row, QWidget* parent);
