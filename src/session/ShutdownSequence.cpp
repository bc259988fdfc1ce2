#include "session/ShutdownSequence.h"

#include "chat/TimedEvents.h"
#include "presentation/ChatLog.h"

ShutdownSequence::ShutdownSequence() {
    m_steps = {
        {QStringLiteral("Saving log files.."), SaveLogFiles},
        {QStringLiteral("Killing timers.."), [] { TimedEvents::instance().stop(); }},
    };
}

void ShutdownSequence::run() {
    for (const Step& step : m_steps) {
        Q_EMIT stepStarted(step.text);
        step.run();
    }
}
