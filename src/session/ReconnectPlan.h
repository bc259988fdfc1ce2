#pragma once

#include <QString>
#include <QtGlobal>

// When a dropped slot tries its server again. The first wait is 15 seconds and
// each drop doubles it, up to 10 minutes; every wait gets up to a fifth more at
// random, so that many slots dropped by one server restart do not all knock at
// once. A session that stayed in chat for a minute starts the waits afresh; one
// that the server drops at once does not, so such a server is not hammered.
class ReconnectPlan {
public:
    static constexpr quint32 kFirstWait = 15000;
    static constexpr quint32 kLongestWait = 600000;
    static constexpr quint32 kSteadySession = 60000;

    // Sets the next try from `now` and returns the wait in milliseconds.
    quint32 arm(quint32 now);
    // No try is pending any more; the waits keep their growth.
    void cancel() { m_armed = false; }
    // The slot reached chat.
    void reachedChat(quint32 now);
    // Back to the first wait, nothing pending (a slot emptied).
    void reset();

    // Moves the planned try to `due`, so that tries of many slots keep
    // their spacing; the wait's growth is unchanged.
    void moveTo(quint32 due) { m_due = due; }
    quint32 due() const { return m_due; }

    bool isArmed() const { return m_armed; }
    bool isDue(quint32 now) const { return m_armed && qint32(now - m_due) >= 0; }
    // Milliseconds until the try, 0 when due.
    quint32 remaining(quint32 now) const;

    // "15 seconds", "2 minutes 30 seconds", "10 minutes".
    static QString waitText(quint32 ms);

private:
    bool m_armed = false;
    quint32 m_due = 0;
    int m_failures = 0;
    bool m_inChat = false;
    quint32 m_chatSince = 0;
};
