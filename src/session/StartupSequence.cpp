#include "session/StartupSequence.h"

#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"

void WriteStartupLine(const QString& text) {
    WriteChat(0, {{CurrentTheme().status.Warning, text}});
}

namespace {

bool startSlots() {
    SlotTable::instance();
    return true;
}

bool grabCachedVariables() {
    ReadMachineFacts();
    SlotTable::instance().SelectBot(0);
    return true;
}

bool printWelcome() {
    WriteChat(0, {{0xFFFF00, QStringLiteral("Welcome to Corvantide v") + Machine().versionText()}});
    WriteChat(0, {{0xFFFFFF, QString(69, u'-')}});
    WriteChat(0, {{0xFFFF, QStringLiteral("Starting Corvantide..")}});
    return true;
}

bool finish() {
    SlotTable::instance().IsLoaded = true;
    WriteChat(0, {{CurrentTheme().status.Success,
                   QStringLiteral("Completed all startup tasks successfully.")}});
    return true;
}

} // namespace

StartupSequence::StartupSequence() {
    m_steps = {
        {QStringLiteral("Starting Corvantide.."), startSlots},
        {QStringLiteral("Grabbing cached variables.."), grabCachedVariables},
        {QStringLiteral("Printing welcome message..."), printWelcome},
        {QString(), finish},
    };
}

bool StartupSequence::run() {
    for (const Step& step : m_steps) {
        if (!step.text.isEmpty())
            Q_EMIT stepStarted(step.text);
        if (!step.run())
            return false;
    }
    return true;
}
