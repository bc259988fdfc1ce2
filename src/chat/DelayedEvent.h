#pragma once

#include <QString>

// An incoming chat event held back until the delay timer hands it on.
struct DelayedEvent {
    QString Username;
    QString Message;
    qint32 Ping = 0;
    qint32 Flags = 0;
    quint32 EventTime = 0;
    quint8 EventID = 0;
};
