#include "media/PrivateBus.h"

#include <QStandardPaths>

PrivateBus& PrivateBus::instance() {
    static PrivateBus bus;
    return bus;
}

PrivateBus::PrivateBus() {
    const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (daemon.isEmpty()) {
        error = QStringLiteral("dbus-daemon is not installed (Debian package dbus-daemon)");
        return;
    }
    m_daemon.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"),
                            QStringLiteral("--nopidfile"), QStringLiteral("--print-address")});
    while (m_daemon.waitForReadyRead(10000)) {
        if (m_daemon.canReadLine()) {
            address = QString::fromUtf8(m_daemon.readLine()).trimmed();
            return;
        }
    }
    error = QStringLiteral("dbus-daemon printed no address: ") +
            QString::fromLocal8Bit(m_daemon.readAllStandardError());
}

PrivateBus::~PrivateBus() {
    m_daemon.kill();
    m_daemon.waitForFinished(2000);
}
