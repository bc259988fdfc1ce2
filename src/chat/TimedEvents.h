#pragma once

#include <QObject>
#include <QTimer>

// The periodic work of the program. Every timer runs on the event loop and
// walks all slots; slots keep running whichever one is on screen.
class TimedEvents : public QObject {
    Q_OBJECT
public:
    static TimedEvents& instance();
    void start();
    void stop();
    bool isRunning() const { return m_fast.isActive(); }

    // One tick of the 100 ms timer: the connection watchdog of each slot.
    static void fastTick();

private:
    TimedEvents();
    QTimer m_fast;
};
