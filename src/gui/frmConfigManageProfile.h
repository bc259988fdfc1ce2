#pragma once

#include <QDialog>
#include <functional>

class QLineEdit;
class QListWidget;

// The profile manager: makes, copies, renames and removes stored profiles.
// Slots that hold a renamed profile follow its new name; slots that hold a
// removed one are unloaded.
class frmConfigManageProfile : public QDialog {
    Q_OBJECT
public:
    explicit frmConfigManageProfile(QWidget* parent = nullptr);

    QListWidget* List1() const { return m_list; }
    QLineEdit* Text1() const { return m_text; }

    void cmdAdd_Click();
    // Clone and rename ask for the new name, delete asks to be sure; each
    // acts when its question is answered.
    void cmdClone_Click();
    void cmdRename_Click();
    void cmdDel_Click();

private:
    // Refills the list, keeping the selected profile, else choosing the one
    // on screen in the main window.
    void showList(const QString& select = {});
    void askName(const QString& prompt, const std::function<void(const QString&)>& answered);

    QListWidget* m_list;
    QLineEdit* m_text;
};
