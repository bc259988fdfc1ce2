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
#include <functional>

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
    // Until the chat view of slot `i` shows `text`.
    static ::testing::AssertionResult saw(int i, const QString& text, int ms = 20000) {
        if (waitFor([&] { return chat(i).contains(text); }, ms))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "not shown: " << text.toStdString() << "\nshown:\n"
                                             << chat(i).toStdString();
    }
    // A profile of `account` at home in `channel`, set up by `configure` and
    // connected; the test goes on once the bot is in the channel, or with no
    // channel once it is online (on a clock driven by hand the join is shown
    // only when the test moves the clock).
    int inChannel(const QString& account, const QString& channel,
                  const std::function<void(BotElement&)>& configure = {}) {
        const int i = sandbox.loadProfile(account, channel);
        if (configure) configure(Bots(i));
        SlotTable::instance().ConnectBot(i);
        EXPECT_TRUE(waitFor(
            [&] { return channel.isEmpty() ? Bots(i).Online() : Bots(i).Channel() == channel; },
            20000))
            << chat(i).toStdString();
        return i;
    }
    // Lines for the sandbox's control port, each of which it must accept.
    void control(const QStringList& lines) {
        ASSERT_EQ(sandbox.control(lines), QStringList(lines.size(), QStringLiteral("ok")));
    }
    // The chat lines the traced sandbox heard from the bots, in order.
    QStringList linesAtServer() const {
        QStringList lines;
        for (const QByteArray& line : chatLinesSent(tracePath()))
            lines << QString::fromLatin1(line);
        return lines;
    }
    ::testing::AssertionResult serverHears(const QString& line) {
        if (waitFor([&] { return linesAtServer().contains(line); }, 15000))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "not sent: " << line.toStdString() << "\nsent:\n  "
               << linesAtServer().join(QStringLiteral("\n  ")).toStdString();
    }
    // Lets the event loop run for `ms`, whatever comes.
    static void pause(int ms) {
        waitFor([] { return false; }, ms);
    }

    QTemporaryDir traceDir;
    SandboxProcess sandbox;
};
