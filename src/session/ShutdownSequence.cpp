#include "session/ShutdownSequence.h"

#include "chat/TimedEvents.h"

ShutdownSequence::ShutdownSequence() {
    m_steps = {
        {QStringLiteral("Killing timers.."), [] { TimedEvents::instance().stop(); }},
    };
}

void ShutdownSequence::run() {
    for (const Step& step : m_steps) {
        Q_EMIT stepStarted(step.text);
        step.run();
    }
}
