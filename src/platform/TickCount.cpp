#include "platform/TickCount.h"

#include <time.h>

namespace {

std::function<quint32()>& source() {
    static std::function<quint32()> fn;
    return fn;
}

quint32 bootClock() {
    timespec ts{};
    clock_gettime(CLOCK_BOOTTIME, &ts);
    const quint64 ms = quint64(ts.tv_sec) * 1000u + quint64(ts.tv_nsec) / 1000000u;
    return static_cast<quint32>(ms);
}

} // namespace

quint32 GetTickCount() {
    const auto& fn = source();
    return fn ? fn() : bootClock();
}

namespace tickcount {

void setSource(std::function<quint32()> fn) {
    source() = std::move(fn);
}

bool isReplaced() {
    return bool(source());
}

ManualClock::ManualClock(quint32 start) : m_now(start) {
    setSource([this] { return m_now; });
}

ManualClock::~ManualClock() {
    setSource({});
}

} // namespace tickcount
