#pragma once

#include "social/ClanNotices.h"

#include <QDialog>
#include <QTimer>

class QLabel;

// An invitation to a clan, to join it or to help found it, with the time
// left to answer; left alone it closes and the server declines it.
class frmShowInvite : public QDialog {
    Q_OBJECT
public:
    explicit frmShowInvite(const ClanInvitation& Invitation, QWidget* parent = nullptr);

    // One second of the clock; public so tests need not wait.
    void tick();
    int secondsLeft() const { return m_counter; }

private:
    void answer(bool accept);

    ClanInvitation m_invitation;
    int m_counter = 0;
    bool m_answered = false;
    QLabel* ClanName;
    QLabel* ClanInviter;
    QLabel* Ticker;
    QTimer tmrKill;
};
