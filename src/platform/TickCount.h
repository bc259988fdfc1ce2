#pragma once

#include <QtGlobal>

#include <functional>

// The system's millisecond counter: 32 bits since boot, wrapping after about
// 49.7 days just as the counter the protocol's tokens and timers were built on.
// Elapsed time is always a difference of ticks, so wrapping is harmless.
quint32 GetTickCount();

// Milliseconds from `since` to now, correct across a wrap.
inline quint32 TicksSince(quint32 since) {
    return GetTickCount() - since;
}

namespace tickcount {

// Replaces the clock, for tests that drive time by hand. An empty function
// restores the real clock.
void setSource(std::function<quint32()> source);
// A test drives the clock: whoever sleeps until a tick must look often.
bool isReplaced();

// A clock that only moves when told to.
class ManualClock {
public:
    explicit ManualClock(quint32 start = 1000);
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    void advance(quint32 ms) { m_now += ms; }
    void set(quint32 now) { m_now = now; }
    quint32 now() const { return m_now; }

private:
    quint32 m_now;
};

} // namespace tickcount
