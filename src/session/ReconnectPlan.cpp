#include "session/ReconnectPlan.h"

#include <QRandomGenerator>

quint32 ReconnectPlan::arm(quint32 now) {
    if (m_inChat && now - m_chatSince >= kSteadySession) m_failures = 0;
    m_inChat = false;
    quint32 wait = kFirstWait;
    for (int i = 0; i < m_failures && wait < kLongestWait; ++i)
        wait *= 2;
    wait = std::min(wait, kLongestWait);
    ++m_failures;
    wait += QRandomGenerator::global()->bounded(wait / 5 + 1);
    m_due = now + wait;
    m_armed = true;
    return wait;
}

void ReconnectPlan::reachedChat(quint32 now) {
    m_armed = false;
    m_inChat = true;
    m_chatSince = now;
}

void ReconnectPlan::reset() {
    *this = ReconnectPlan();
}

quint32 ReconnectPlan::remaining(quint32 now) const {
    if (!m_armed || isDue(now)) return 0;
    return m_due - now;
}

QString ReconnectPlan::waitText(quint32 ms) {
    const quint32 seconds = (ms + 999) / 1000;
    const quint32 minutes = seconds / 60;
    const quint32 rest = seconds % 60;
    const auto unit = [](quint32 n, const char* one, const char* many) {
        return QString::number(n) + u' ' + QLatin1String(n == 1 ? one : many);
    };
    if (minutes == 0) return unit(rest, "second", "seconds");
    if (rest == 0) return unit(minutes, "minute", "minutes");
    return unit(minutes, "minute", "minutes") + u' ' + unit(rest, "second", "seconds");
}
