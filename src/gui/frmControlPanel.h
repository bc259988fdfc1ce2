#pragma once

#include <QWidget>
#include <vector>

class ControlPanelPage;
class QLabel;
class QListWidget;
class QStackedWidget;

// The window for every setting that is not tied to one profile. The list
// cbSettings on the left chooses a panel; choosing a row puts its panel on
// top and loads it, which also throws away edits not saved. Each panel has
// its own Save and Cancel (Cancel loads again); neither closes the window.
// Escape closes it, Ctrl+S saves the panel on view.
class frmControlPanel : public QWidget {
    Q_OBJECT
public:
    explicit frmControlPanel(QWidget* parent = nullptr);

    static constexpr int RowCount = 19;
    // The rows of frmConfig and others: the databases.
    static constexpr int DatabasesRow = 13;

    // Puts the row's panel on top and loads it.
    void selectRow(int row);
    int currentRow() const;
    // The panel of a row, made if it was not yet.
    ControlPanelPage* page(int row);
    // Saves or reloads the panel on view, as its buttons do.
    bool saveCurrent();
    void cancelCurrent();

    QListWidget* cbSettings() const { return m_list; }
    QLabel* lblStatus() const { return m_status; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showRow(int row);
    QWidget* buildPanel(int row);

    QListWidget* m_list = nullptr;
    QStackedWidget* m_stack = nullptr;
    QLabel* m_status = nullptr;
    std::vector<ControlPanelPage*> m_pages;
};
