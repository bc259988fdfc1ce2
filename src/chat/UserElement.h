#pragma once

#include <QString>

// One user seen in the channel.
class UserElement {
public:
    qint32 Flags = 0;
    qint32 Ping = 0;
    QString Statstring;
    quint32 Uptime = 0;    // tick of arrival, restarted by each talk line shown
    QString UsernameFixed; // the plain form of the name
    quint32 LastAction = 0;

    const QString& Username() const { return m_username; }
    void setUsername(const QString& name);

private:
    QString m_username;
};
