#include "session/ShutdownSequence.h"

#include "chat/TimedEvents.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatLog.h"
#include "shell/DesktopShell.h"

ShutdownSequence::ShutdownSequence() {
    m_steps = {
        {QStringLiteral("Killing Corvantide..."), [] {}},
        {QStringLiteral("Notify script of shutdown.."),
         [] { PluginHost::instance().RunScript(0, QStringLiteral("Event_Shutdown"), {}); }},
        {QStringLiteral("Saving log files.."), SaveLogFiles},
        {QStringLiteral("Killing timers.."), [] { TimedEvents::instance().stop(); }},
        {QStringLiteral("Killing tray icon.."),
         [] {
             DesktopShell::instance().UnregisterHideHotkey();
             DesktopShell::instance().RemoveTrayIcon();
         }},
        {QStringLiteral("Killing forms.."), [] { DesktopShell::instance().KillForms(); }},
    };
}

void ShutdownSequence::run() {
    for (const Step& step : m_steps) {
        Q_EMIT stepStarted(step.text);
        step.run();
    }
}
