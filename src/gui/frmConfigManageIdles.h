#pragma once

#include "gui/frmConfigManage.h"

class QLabel;
class QToolButton;

// The list manager for idle messages, with the variables a message may use
// behind a button.
class frmConfigManageIdles : public frmConfigManage {
    Q_OBJECT
public:
    explicit frmConfigManageIdles(QWidget* parent = nullptr);

    // Shows or hides the variables.
    void cmdExpand_Click();
    QToolButton* cmdExpand() const { return m_expand; }
    QLabel* variables() const { return m_variables; }

protected:
    bool acceptEntry(const QString& text) override;

private:
    QToolButton* m_expand;
    QLabel* m_variables;
};
