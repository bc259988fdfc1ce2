#include "platform/LocalClock.h"

#include <QByteArray>
#include <cstdlib>
#include <ctime>

namespace {

struct Second {
    time_t utc = -1;
    QByteArray zone; // TZ as it was, or "\0" for none
    int hour = 0;
    int minute = 0;
    int second = 0;
};

QByteArray zoneSetting() {
    const char* tz = std::getenv("TZ");
    return tz ? QByteArray(tz) : QByteArray(1, '\0');
}

bool zoneIs(const QByteArray& zone) {
    const char* tz = std::getenv("TZ");
    if (!tz) return zone.size() == 1 && zone[0] == '\0';
    return zone == tz;
}

} // namespace

QTime LocalClock::now() {
    static Second cached;
    timespec utc{};
    clock_gettime(CLOCK_REALTIME, &utc);
    if (utc.tv_sec != cached.utc || !zoneIs(cached.zone)) {
        // tzset reads the zone again when TZ or the zone file changed.
        tzset();
        tm local{};
        localtime_r(&utc.tv_sec, &local);
        cached = {utc.tv_sec, zoneSetting(), local.tm_hour, local.tm_min, local.tm_sec};
    }
    return QTime(cached.hour, cached.minute, cached.second, int(utc.tv_nsec / 1000000));
}
