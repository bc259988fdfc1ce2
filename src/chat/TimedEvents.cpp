#include "chat/TimedEvents.h"

#include "session/ConnectionWrapper.h"
#include "session/SlotTable.h"

TimedEvents& TimedEvents::instance() {
    static TimedEvents timers;
    return timers;
}

TimedEvents::TimedEvents() {
    m_fast.setInterval(100);
    connect(&m_fast, &QTimer::timeout, this, &TimedEvents::fastTick);
}

void TimedEvents::start() {
    m_fast.start();
}

void TimedEvents::stop() {
    m_fast.stop();
}

void TimedEvents::fastTick() {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i)
        ConnectionWrapper::Watchdog(i);
}
