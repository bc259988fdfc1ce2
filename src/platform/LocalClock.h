#pragma once

#include <QTime>

// The wall clock in local time, as time stamps show it. Asking the C library
// for local time makes it look at the zone file again each time; a busy
// channel stamps thousands of lines a second, so the local time of the
// current second is worked out once and kept. A new second, or a change of
// TZ, works it out again, which also catches a change of /etc/localtime and
// a daylight-saving change exactly on the second it happens.
class LocalClock {
public:
    static QTime now();
};
