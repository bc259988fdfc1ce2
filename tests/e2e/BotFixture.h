#pragma once

// Bots in slots of this process against a sandbox of the test's own. The
// program's timers run as in a real run (the delayed chat events, the send
// queue, the watchdog), the bots hash nothing themselves, and the sandbox
// can write down every frame it sees.
#include "chat/TimedEvents.h"
#include "common/SandboxProcess.h"
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "e2e/SandboxTrace.h"
#include "platform/ChatDocument.h"

#include <QTemporaryDir>

class BotFixture : public SlotFixture {
protected:
    void SetUp() override {
        SlotFixture::SetUp();
        SettingsWrapper::instance().setLocalHashing(false);
        TimedEvents::instance().start();
    }
    void TearDown() override { TimedEvents::instance().stop(); }

    // The sandbox's options with the trace written to tracePath().
    QStringList traced(QStringList options = {}) const {
        return options << QStringLiteral("--trace-file") << tracePath();
    }
    QString tracePath() const { return traceDir.filePath(QStringLiteral("trace.log")); }
    static QString chat(int i) { return rtbChat(i).text(); }
    // Lets the event loop run for `ms`, whatever comes.
    static void pause(int ms) {
        waitFor([] { return false; }, ms);
    }

    QTemporaryDir traceDir;
    SandboxProcess sandbox;
};
