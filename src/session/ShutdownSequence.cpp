#include "session/ShutdownSequence.h"

#include "chat/TimedEvents.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatLog.h"

ShutdownSequence::ShutdownSequence() {
    m_steps = {
        {QStringLiteral("Notify script of shutdown.."),
         [] { PluginHost::instance().RunScript(0, QStringLiteral("Event_Shutdown"), {}); }},
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
