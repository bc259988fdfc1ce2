#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <vector>

// The periodic work of the program. None of the timers is per slot: each
// routine walks the slots, which keep running whichever one is on screen.
// Periods are measured on the tick counter, so a test that drives the clock by
// hand drives every timer with it; one heartbeat wakes the loop when the next
// routine is due. A routine with nothing to do (empty queues, nobody to
// watch) does not wake the loop: after anything the loop handles, the timers
// look again at what waits for them.
class TimedEvents : public QObject {
    Q_OBJECT
public:
    struct Timer {
        int number;     // as the rest of the program names them
        quint32 period; // ms
        std::function<void()> routine;
        // Milliseconds until the routine has something to do, 0 for now, -1
        // for nothing; none: something every period.
        std::function<qint64(quint32 now)> work;
        quint32 last = 0; // tick of the period's start
    };

    static TimedEvents& instance();
    void start();
    void stop();
    bool isRunning() const { return m_running; }
    // Milliseconds until the timers next wake the loop, -1 while none waits.
    int msUntilWake() const { return m_heartbeat.isActive() ? m_heartbeat.remainingTime() : -1; }

    // Runs each routine whose period has passed, in the order of the timers'
    // numbers. A stall runs a routine once, not once for each period missed;
    // a clock set back starts every period afresh.
    void pulse();

    // The text under the chat and the window's caption for the slot on
    // screen, as the window shows them.
    const QString& StatusLine() const { return m_statusLine; }
    const QString& Caption() const { return m_caption; }
    const QString& ConnectLabel() const { return m_connectLabel; }

    // The routines, public so that tests can run one alone.
    void statusTick();
    static void sendTick();
    void minuteTick();
    static void keepAliveTick();
    static void voidTick();
    static void recolourTick();
    void delayedEventsTick();

    // An idle message with its $ tokens filled in for a slot.
    static QString ExpandIdleMessage(int Index, const QString& message);

Q_SIGNALS:
    void statusChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    TimedEvents();
    void scheduleHeartbeat();
    // Something else than the heartbeat was handled: the status line may be
    // stale and work may have come.
    void afterActivity();
    // Work may come from outside any event the loop hands out (a test that
    // fills a queue between two turns of the loop): each turn looks too.
    void lookForWork();
    qint64 statusWork(quint32 now) const;
    static qint64 sendWork(quint32 now);
    qint64 delayedWork() const;

    std::vector<Timer> m_timers;
    QTimer m_heartbeat;
    quint32 m_wakeAt = 0; // tick the heartbeat is set for, while it runs
    bool m_checkPending = false;
    QMetaObject::Connection m_awake, m_aboutToBlock;
    quint32 m_lastStatus = 0;
    bool m_statusOwed = false; // something happened since the status line was made
    bool m_running = false;
    int m_autoClearCount = 0;
    QString m_statusLine;
    QString m_caption;
    QString m_connectLabel;
    // A failure of the delayed path, reported on the next tick.
    QString m_pendingError;
};
