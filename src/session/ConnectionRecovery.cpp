// How a slot comes back: a connection the server dropped, lost to a socket
// error or to a broken stream, or an attempt whose server never answered, is
// tried again by itself after a growing wait.
#include "chat/BotElement.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/LogonRecord.h"
#include "session/SlotTable.h"

#include <QTime>

#include <algorithm>
#include <vector>

namespace {

constexpr qint32 kAttemptTime = 30000;   // an attempt has this long to reach chat
constexpr qint32 kAttemptSpacing = 3000; // between attempts of all slots together

void startAttempt(int Index, quint32 now) {
    SlotTable& table = SlotTable::instance();
    table.ConnectBot(Index);
    table.LastReconnect = now;
}

// Tries of all slots start at least 3 seconds apart, so that a server that
// dropped many profiles at once is not knocked at by all of them together.
// Each planned try keeps its moment; a new one takes the first free moment
// from `wanted` on, so the time it announces is the time it keeps.
quint32 spacedStart(int Index, quint32 wanted) {
    const SlotTable& table = SlotTable::instance();
    std::vector<qint32> taken; // moments of other tries, relative to `wanted`
    if (table.LastReconnect != 0) taken.push_back(qint32(table.LastReconnect - wanted));
    for (int i = 1; i <= table.highestIndex(); ++i) {
        const ReconnectPlan& plan = Bots(i).Reconnect;
        if (i != Index && plan.isArmed()) taken.push_back(qint32(plan.due() - wanted));
    }
    std::sort(taken.begin(), taken.end());
    qint64 at = 0;
    for (const qint32 moment : taken) {
        if (moment <= at - kAttemptSpacing) continue;
        if (moment >= at + kAttemptSpacing) break;
        at = qint64(moment) + kAttemptSpacing;
    }
    return wanted + quint32(at);
}

} // namespace

bool ConnectionWrapper::inBnlsStep(int Index) {
    const BotElement& bot = Bots(Index);
    return !bot.Online() && !bot.Reconnect.isArmed() &&
           wsBNET(Index).State() == SocketControl::Closed;
}

void ConnectionWrapper::DropConnection(int Index, const QString& Line) {
    WriteChat(Index, Status::Error, Line);
    Bots(Index).setOnline(false);
    wsBNET(Index).Close();
    wsBNLS(Index).Close();
    PluginHost::instance().SocketClose(Index);
    ScheduleReconnect(Index);
}

void ConnectionWrapper::bnlsProtocolError(int Index, const QString& what) {
    const QString line = QStringLiteral("[BNLS] Protocol error: the server sent ") + what +
                         QStringLiteral("; closing the connection.");
    if (!Bots(Index).Online()) {
        // The logon cannot finish without its version check.
        DropConnection(Index, line);
        return;
    }
    WriteChat(Index, Status::Error, line);
    wsBNLS(Index).Close();
}

void ConnectionWrapper::ScheduleReconnect(int Index) {
    BotElement& bot = Bots(Index);
    // The user's disconnect and a refusal that a retry cannot cure disarm
    // CanConnect; nobody waits for a slot without a profile.
    if (!bot.IsLoaded || !bot.CanConnect || bot.Reconnect.isArmed()) return;
    const quint32 now = GetTickCount();
    bot.Reconnect.arm(now);
    bot.Reconnect.moveTo(spacedStart(Index, bot.Reconnect.due()));
    const quint32 wait = bot.Reconnect.due() - now;
    WriteChat(Index, Status::Warning,
              QStringLiteral("[BNET] Reconnecting in ") + ReconnectPlan::waitText(wait) +
                  QStringLiteral(", at ") +
                  QTime::currentTime().addMSecs(int(wait)).toString(QStringLiteral("HH:mm:ss")) +
                  QStringLiteral("."));
}

namespace {

enum class Watch { Nothing, Attempt, Planned };

// What the watchdog looks after in a slot: an attempt under way, whose server
// has 30 seconds to bring it into chat, or a planned try.
Watch watchOf(int Index, bool* bnlsStep = nullptr) {
    const BotElement& bot = Bots(Index);
    const int bnet = wsBNET(Index).State();
    if (!bot.CanConnect) return Watch::Nothing;
    if (bnet == SocketControl::Connected && bot.IsLoaded && bot.Online()) return Watch::Nothing;
    if (bnet != SocketControl::Connected && (!bot.IsLoaded || bot.Online())) return Watch::Nothing;
    // The BNLS connection outlives its version check; it marks an attempt
    // in its first step only while no try is planned.
    const bool inBnls = bnet == SocketControl::Closed && !bot.Reconnect.isArmed() &&
                        wsBNLS(Index).State() != SocketControl::Closed &&
                        wsBNLS(Index).State() != SocketControl::Error;
    if (bnlsStep) *bnlsStep = inBnls;
    if (bnet == SocketControl::Connected || bnet == SocketControl::Connecting || inBnls)
        return bot.LastConnect == 0 ? Watch::Nothing : Watch::Attempt;
    return bot.Reconnect.isArmed() ? Watch::Planned : Watch::Nothing;
}

} // namespace

qint64 ConnectionWrapper::WatchdogWait(int Index, quint32 now) {
    const BotElement& bot = Bots(Index);
    switch (watchOf(Index)) {
    case Watch::Attempt:
        // Ticks are compared as signed differences, so a moment set ahead of
        // now counts as not yet due.
        return std::max<qint64>(0, qint32(bot.LastConnect + kAttemptTime + 1 - now));
    case Watch::Planned:
        return bot.Reconnect.remaining(now);
    case Watch::Nothing:
        break;
    }
    return -1;
}

void ConnectionWrapper::Watchdog(int Index) {
    BotElement& bot = Bots(Index);
    const quint32 now = GetTickCount();
    bool bnlsStep = false;
    const Watch watch = watchOf(Index, &bnlsStep);
    if (watch == Watch::Attempt) {
        if (WatchdogWait(Index, now) > 0) return;
        // A server that takes the connection and never answers is named, so
        // the user can tell it from one that refuses, and waited for as for
        // a server that went away.
        const bool bnlsSilent = bnlsStep || (wsBNET(Index).State() == SocketControl::Connected &&
                                             Logons(Index).AwaitingBnls);
        WriteChat(Index, Status::Error,
                  QLatin1String(bnlsSilent ? "[BNLS] The BNLS server"
                                           : "[BNET] The Battle.net server") +
                      QStringLiteral(" did not answer within 30 seconds."));
        bot.setOnline(false);
        wsBNET(Index).Close();
        wsBNLS(Index).Close();
        ScheduleReconnect(Index);
        return;
    }
    // The planned moment already keeps the spacing between slots.
    if (watch == Watch::Planned && bot.Reconnect.isDue(now)) {
        bot.Reconnect.cancel();
        startAttempt(Index, now);
    }
}
