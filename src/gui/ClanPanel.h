#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

// The clan commands of the active slot: change the chieftain, invite a user,
// change the message of the day, view the members, create, leave or disband
// the clan. A slot in a clan has those its own rank lets it do, as the server
// would allow them, and follows the rank as it changes; one in none has only
// "Create new clan".
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
    // Each is enabled for a member whose rank lies between least and most.
    QLineEdit* addCommand(const QString& caption, const QString& name,
                          void (*act)(int, const QString&), int least);
    QToolButton* addLink(const QString& caption, const QString& name, int least, int most);

    struct Gated {
        QWidget* widget;
        int least;
        int most;
    };
    int m_slot = 0;
    QLabel* m_status;
    QList<Gated> m_member; // enabled in a clan, by rank
    QToolButton* m_create;
};
