#pragma once

#include <QProcess>
#include <QString>

// A session bus of the test's own: a dbus-daemon started once per test
// program and ended with it, so no test touches the desktop's bus.
class PrivateBus {
public:
    static PrivateBus& instance();
    // Empty when the daemon could not start; `error` then says why.
    QString address;
    QString error;

private:
    PrivateBus();
    ~PrivateBus();
    QProcess m_daemon;
};
