#pragma once

#include "config/OfferedList.h"

#include <QDialog>

class QLineEdit;
class QListWidget;
class QPushButton;
class QVBoxLayout;

// The list manager: adds, removes and edits the entries of one list that the
// profile form offers (accounts, passwords, servers, channels, keys).
class frmConfigManage : public QDialog {
    Q_OBJECT
public:
    explicit frmConfigManage(QWidget* parent = nullptr);

    // Shows the list of that kind under its caption.
    void Manager(OfferedList::Kind kind);

    OfferedList::Kind kind() const { return m_kind; }
    QListWidget* List1() const { return m_list; }
    QLineEdit* Text1() const { return m_text; }

    void cmdAdd_Click();
    void cmdDel_Click();
    // Takes the entry out of the store and into the box, to be changed and
    // added back.
    void cmdEdit_Click();

protected:
    // Whether a text may go into the list; a refusal has said why.
    virtual bool acceptEntry(const QString& text);
    // Room below the buttons for what a kind of list adds.
    QVBoxLayout* extras() const { return m_extras; }

private:
    void fill();

    OfferedList::Kind m_kind = OfferedList::Accounts;
    QListWidget* m_list;
    QLineEdit* m_text;
    QVBoxLayout* m_extras;
};
