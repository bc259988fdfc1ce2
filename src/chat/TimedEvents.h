#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

// The periodic work of the program. None of the timers is per slot: each
// callback walks the slots, which keep running whichever one is on screen.
class TimedEvents : public QObject {
    Q_OBJECT
public:
    static TimedEvents& instance();
    void start();
    void stop();
    bool isRunning() const { return m_sendStep.isActive(); }

    // The text under the chat and the window's caption for the slot on
    // screen, as the window shows them.
    const QString& StatusLine() const { return m_statusLine; }
    const QString& Caption() const { return m_caption; }
    const QString& ConnectLabel() const { return m_connectLabel; }

    // The callbacks, public so that tests can drive them with a hand clock.
    void statusTick();
    static void sendTick();
    void minuteTick();
    static void keepAliveTick();
    static void voidTick();
    void delayedEventsTick();

    // An idle message with its $ tokens filled in for a slot.
    static QString ExpandIdleMessage(int Index, const QString& message);

Q_SIGNALS:
    void statusChanged();

private:
    TimedEvents();
    QTimer m_status;     // 500 ms
    QTimer m_sendStep;   // 100 ms
    QTimer m_minute;     // 60 s
    QTimer m_keepAlive;  // 40 s
    QTimer m_void;       // 12 s
    QTimer m_delayed;    // 50 ms
    int m_autoClearCount = 0;
    QString m_statusLine;
    QString m_caption;
    QString m_connectLabel;
    // A failure of the delayed path, reported on the next tick.
    QString m_pendingError;
};
