#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

// The clan commands of the active slot: change the chieftain, invite a user,
// change the message of the day, view the members, create, leave or disband
// the clan. A slot in a clan has all but "Create new clan"; one in none has
// only that.
class ClanPanel : public QWidget {
    Q_OBJECT
public:
    explicit ClanPanel(QWidget* parent = nullptr);

    void showSlot(int index);

Q_SIGNALS:
    // "View/edit members": the clan list is to be shown.
    void membersRequested();

private:
    // A text box with its go image; Enter in the box does the same.
    QLineEdit* addCommand(const QString& caption, const QString& name,
                          void (*act)(int, const QString&));
    QToolButton* addLink(const QString& caption, const QString& name);

    int m_slot = 0;
    QLabel* m_status;
    QList<QWidget*> m_member; // enabled in a clan
    QToolButton* m_create;
};
