// How a slot comes back: a connection the server dropped, lost to a socket
// error or to a broken stream is tried again by itself after a growing wait,
// and an attempt that hangs is begun again.
#include "chat/BotElement.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"
#include "session/ConnectionWrapper.h"
#include "session/SlotTable.h"

#include <QTime>

namespace {

constexpr qint32 kAttemptTime = 30000;   // an attempt has this long to reach chat
constexpr qint32 kAttemptSpacing = 3000; // between attempts of all slots together

// The moment of the last attempt of any slot is far enough back.
bool spacingAllows(quint32 now) {
    return qint32(now - SlotTable::instance().LastReconnect) > kAttemptSpacing;
}

void startAttempt(int Index, quint32 now) {
    SlotTable& table = SlotTable::instance();
    table.ConnectBot(Index);
    table.LastReconnect = now;
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
    const quint32 wait = bot.Reconnect.arm(GetTickCount());
    WriteChat(Index, Status::Warning,
              QStringLiteral("[BNET] Reconnecting in ") + ReconnectPlan::waitText(wait) +
                  QStringLiteral(", at ") +
                  QTime::currentTime().addMSecs(int(wait)).toString(QStringLiteral("HH:mm:ss")) +
                  QStringLiteral("."));
}

void ConnectionWrapper::Watchdog(int Index) {
    BotElement& bot = Bots(Index);
    const int bnet = wsBNET(Index).State();
    if (bnet == SocketControl::Connected && bot.IsLoaded && bot.Online()) return;
    if (bnet != SocketControl::Connected && (!bot.IsLoaded || bot.Online())) return;
    const quint32 now = GetTickCount();
    // The BNLS connection outlives its version check; it marks an attempt
    // in its first step only while no try is planned.
    const bool bnlsStep = bnet == SocketControl::Closed && !bot.Reconnect.isArmed() &&
                          wsBNLS(Index).State() != SocketControl::Closed &&
                          wsBNLS(Index).State() != SocketControl::Error;
    if (bnet == SocketControl::Connected || bnet == SocketControl::Connecting || bnlsStep) {
        // Ticks are compared as signed differences, so a moment set ahead of
        // now counts as not yet due.
        const qint32 sinceConnect = qint32(now - bot.LastConnect);
        if (!bot.CanConnect || bot.LastConnect == 0 || sinceConnect <= kAttemptTime ||
            !spacingAllows(now))
            return;
        // A server that takes the connection and never answers gets a line
        // on every try, so the user can tell it from one that refuses.
        WriteChat(Index, Status::Error,
                  QLatin1String(bnlsStep ? "[BNLS]" : "[BNET]") +
                      QStringLiteral(" The server did not answer within 30 seconds; connecting "
                                     "again."));
        startAttempt(Index, now);
        return;
    }
    if (bot.CanConnect && bot.Reconnect.isDue(now) && spacingAllows(now)) {
        bot.Reconnect.cancel();
        startAttempt(Index, now);
    }
}
