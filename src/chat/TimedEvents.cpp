#include "chat/TimedEvents.h"

#include "chat/BotElement.h"
#include "chat/SendQueue.h"
#include "config/FileStamp.h"
#include "config/SettingsWrapper.h"
#include "platform/MediaControl.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/TextFormat.h"
#include "presentation/UserColors.h"
#include "session/ConnectionWrapper.h"
#include "session/GuardedStep.h"
#include "session/MachineFacts.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "shell/DesktopShell.h"
#include "statistics/UserNames.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <algorithm>

namespace {

bool isConnected(int i) {
    return wsBNET(i).State() == SocketControl::Connected;
}

QString programTitle() {
    return QStringLiteral("Corvantide v") + Machine().versionText();
}

QString channelCounts(const BotElement& bot) {
    int operators = 0;
    int representatives = 0;
    for (const UserElement& u : bot.Users) {
        if (u.Flags & 0x01)
            ++representatives;
        else if (u.Flags & 0x02)
            ++operators;
    }
    const QString ops = QString::number(operators);
    const QString reps = QString::number(representatives);
    if (operators && !representatives)
        return QStringLiteral(" with ") + ops + QStringLiteral(" operators.");
    if (operators && representatives)
        return QStringLiteral(" with ") + ops + QStringLiteral(" operators and ") + reps +
               QStringLiteral(" Blizzard representatives.");
    if (representatives)
        return QStringLiteral(" with ") + reps + QStringLiteral(" Blizzard representatives.");
    return QStringLiteral(".");
}

} // namespace

TimedEvents& TimedEvents::instance() {
    static TimedEvents timers;
    return timers;
}

TimedEvents::TimedEvents() {
    const auto anySlot = [](auto&& test) {
        return [test](quint32) -> qint64 {
            SlotTable& table = SlotTable::instance();
            for (int i = 1; i <= table.highestIndex(); ++i)
                if (test(i)) return 0;
            return -1;
        };
    };
    // The song reaches plug-ins when the player says it changed, not on a
    // timer of its own (5). The minute's routine counts the minutes of queue
    // clearing and idle messages, and the users online are the web's: both
    // keep their minute whatever the slots do.
    m_timers = {
        {1, 500, [this] { statusTick(); }, [this](quint32 now) { return statusWork(now); }},
        {2, 100, &TimedEvents::sendTick, &TimedEvents::sendWork},
        {3, 60000, [this] { minuteTick(); }, {}},
        {4, 40000, &TimedEvents::keepAliveTick,
         anySlot([](int i) { return Bots(i).IsLoaded && isConnected(i); })},
        {6, 12000, &TimedEvents::voidTick, anySlot([](int i) {
             const BotElement& bot = Bots(i);
             return bot.IsLoaded && bot.Online() && isConnected(i) &&
                    bot.Channel() == QLatin1String("The Void");
         })},
        // Idle colours change with time alone, so a list on screen with
        // users in it is looked at every period.
        {7, 10000, &TimedEvents::recolourTick,
         [](quint32) -> qint64 {
             const int index = SlotTable::instance().CurrentIndex();
             return index != 0 && Bots(index).Online() && !Bots(index).Users.empty() ? 0 : -1;
         }},
        {8, 50, [this] { delayedEventsTick(); }, [this](quint32) { return delayedWork(); }},
        {9, 60000, [] { DesktopShell::instance().RefreshUsersOnline(); }, {}},
    };
    m_heartbeat.setSingleShot(true);
    m_heartbeat.setTimerType(Qt::PreciseTimer);
    connect(&m_heartbeat, &QTimer::timeout, this, &TimedEvents::pulse);
}

void TimedEvents::start() {
    const quint32 now = GetTickCount();
    for (Timer& t : m_timers)
        t.last = now;
    m_running = true;
    if (QCoreApplication* app = QCoreApplication::instance()) app->installEventFilter(this);
    disconnect(m_awake);
    disconnect(m_aboutToBlock);
    if (QAbstractEventDispatcher* loop = QAbstractEventDispatcher::instance()) {
        m_awake = connect(loop, &QAbstractEventDispatcher::awake, this, &TimedEvents::lookForWork);
        m_aboutToBlock =
            connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, &TimedEvents::lookForWork);
    }
    statusTick();
    scheduleHeartbeat();
}

void TimedEvents::stop() {
    m_running = false;
    if (QCoreApplication* app = QCoreApplication::instance()) app->removeEventFilter(this);
    disconnect(m_awake);
    disconnect(m_aboutToBlock);
    m_heartbeat.stop();
}

void TimedEvents::pulse() {
    for (Timer& t : m_timers) {
        const quint32 now = GetTickCount();
        const quint32 elapsed = now - t.last;
        if (elapsed > 0x7FFFFFFFu) {
            t.last = now;
            continue;
        }
        if (elapsed < t.period) continue;
        t.last = now - elapsed % t.period;
        RunGuarded([&t] { return QStringLiteral("timer ") + QString::number(t.number); },
                   t.routine);
    }
    if (m_running) scheduleHeartbeat();
}

void TimedEvents::scheduleHeartbeat() {
    // Each routine with work comes at the first start of its period from the
    // moment its work is due, so that with work it keeps its period.
    const quint32 now = GetTickCount();
    qint64 next = -1;
    for (const Timer& t : m_timers) {
        const qint64 work = t.work ? t.work(now) : 0;
        if (work < 0) continue;
        const quint32 elapsed = now - t.last;
        qint64 at = elapsed >= t.period ? 0 : qint64(t.period - elapsed);
        if (work > at) at += (work - at + t.period - 1) / t.period * t.period;
        next = next < 0 ? at : std::min(next, at);
    }
    // A hand-driven clock may jump at any moment: it is looked at often.
    if (tickcount::isReplaced()) next = next < 0 ? 50 : std::min<qint64>(next, 50);
    if (next < 0) {
        m_heartbeat.stop();
        return;
    }
    next = std::clamp<qint64>(next, 1, 0x7FFFFFFF);
    // Never spins on a routine that is due at once, nor restarts the timer
    // for the moment it is already set for.
    const quint32 wakeAt = now + quint32(next);
    if (m_heartbeat.isActive() && wakeAt == m_wakeAt) return;
    m_wakeAt = wakeAt;
    m_heartbeat.start(int(next));
}

bool TimedEvents::eventFilter(QObject* watched, QEvent*) {
    // One look after a burst of events, once the loop has handled them.
    if (m_running && !m_checkPending && watched != &m_heartbeat && watched != this) {
        m_checkPending = true;
        QMetaObject::invokeMethod(this, &TimedEvents::afterActivity, Qt::QueuedConnection);
    }
    return false;
}

void TimedEvents::afterActivity() {
    m_checkPending = false;
    if (!m_running) return;
    const quint32 now = GetTickCount();
    // The status line follows at once, and at most every half second.
    if (now - m_lastStatus >= 500)
        statusTick();
    else
        m_statusOwed = true;
    lookForWork();
}

void TimedEvents::lookForWork() {
    if (!m_running) return;
    // A heartbeat due within the finest period looks at all work then.
    if (m_heartbeat.isActive() && qint32(m_wakeAt - GetTickCount()) <= 50) return;
    scheduleHeartbeat();
}

qint64 TimedEvents::statusWork(quint32 now) const {
    const int index = SlotTable::instance().CurrentIndex();
    // The countdown to a planned try changes with time alone.
    const bool countdown = index != 0 && !Bots(index).Online() &&
                           Bots(index).Reconnect.isArmed() && Bots(index).CanConnect;
    if (!m_statusOwed && !countdown) return -1;
    return std::max<qint64>(0, qint32(m_lastStatus + 500 - now));
}

qint64 TimedEvents::sendWork(quint32 now) {
    SlotTable& table = SlotTable::instance();
    qint64 next = -1;
    for (int i = 1; i <= table.highestIndex(); ++i) {
        const BotElement& bot = Bots(i);
        if (isConnected(i) && bot.IsLoaded && bot.Online()) {
            // A burst count is cleared on the tick that finds a queue empty.
            if (!bot.Queue.isEmpty() || sendqueue::QueueBurst() != 0) return 0;
            continue;
        }
        const qint64 wait = ConnectionWrapper::WatchdogWait(i, now);
        if (wait >= 0) next = next < 0 ? wait : std::min(next, wait);
    }
    return next;
}

qint64 TimedEvents::delayedWork() const {
    if (!m_pendingError.isEmpty()) return 0;
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i)
        if (Bots(i).hasDelayedWork()) return 0;
    return -1;
}

void TimedEvents::statusTick() {
    const int index = SlotTable::instance().CurrentIndex();
    QString status;
    QString caption;
    QString connect = QStringLiteral("Connect");
    if (index == 0) {
        status = QStringLiteral(" Running under ") + Machine().OperatingSystem;
        caption = programTitle() + QStringLiteral(" - Viewing bot console -");
    } else if (Bots(index).Online()) {
        const BotElement& bot = Bots(index);
        status = QStringLiteral("Online in channel ") + bot.Channel() + channelCounts(bot);
        connect = QStringLiteral("Reconnect");
        caption = programTitle() + QStringLiteral(" - Viewing profile [") + bot.Profile() +
                  QStringLiteral("]  in channel  [") + bot.Channel() + QStringLiteral("]");
    } else {
        status = QStringLiteral("Disconnected!");
        const ReconnectPlan& plan = Bots(index).Reconnect;
        if (plan.isArmed() && Bots(index).CanConnect)
            status += QStringLiteral(" Reconnecting in ") +
                      ReconnectPlan::waitText(plan.remaining(GetTickCount())) + u'.';
        caption = programTitle() + QStringLiteral(" - Viewing disconnected profile [") +
                  Bots(index).Profile() + QStringLiteral("]");
    }
    m_lastStatus = GetTickCount();
    m_statusOwed = false;
    if (status == m_statusLine && caption == m_caption && connect == m_connectLabel) return;
    m_statusLine = status;
    m_caption = caption;
    m_connectLabel = connect;
    Q_EMIT statusChanged();
}

void TimedEvents::sendTick() {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        // Each slot's step is its own: one that fails leaves the others theirs.
        RunGuarded([] { return QStringLiteral("send step"); }, [i] {
            if (isConnected(i) && Bots(i).IsLoaded && Bots(i).Online())
                sendqueue::SendStep(i);
            else
                ConnectionWrapper::Watchdog(i);
        });
    }
}

QString TimedEvents::ExpandIdleMessage(int Index, const QString& message) {
    const BotElement& bot = Bots(Index);
    QString text = message;
    text.replace(QLatin1String("$v"), programTitle());
    text.replace(QLatin1String("$sysup"), FormatUptime(GetTickCount()));
    text.replace(QLatin1String("$botup"), FormatUptime(TicksSince(Machine().StartTick)));
    text.replace(QLatin1String("$os"), Machine().OperatingSystem);
    text.replace(QLatin1String("$ch"), bot.Channel());
    text.replace(QLatin1String("$me"), bot.UniqueAccount);
    // The player is asked only when the message names its song.
    if (text.contains(QLatin1String("$mp3")))
        text.replace(QLatin1String("$mp3"), MediaControl::instance().CurrentSong());
    return text;
}

void TimedEvents::minuteTick() {
    SlotTable& table = SlotTable::instance();
    if (++m_autoClearCount >= 30) {
        if (SettingsWrapper::instance().AutoCQ()) {
            for (int i = 1; i <= table.highestIndex(); ++i) {
                if (Bots(i).Online()) Bots(i).ClearQueue();
            }
        }
        m_autoClearCount = 0;
    }
    for (int i = 1; i <= table.highestIndex(); ++i) {
        BotElement& bot = Bots(i);
        const qint32 idleTime = bot.Config.IdleTime();
        if (!bot.Online() || !bot.IsLoaded || idleTime <= 0) continue;
        ++bot.IdleCounter;
        const QString message = bot.Config.IdleMsg();
        if (bot.IdleCounter >= idleTime && !message.isEmpty()) {
            bot.Queue.append(ExpandIdleMessage(i, message));
            bot.IdleCounter = 0;
        }
    }
}

void TimedEvents::keepAliveTick() {
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded && isConnected(i)) {
            PacketWriter w;
            w.SendPacket(i, 0x00);
        }
    }
}

void TimedEvents::voidTick() {
    if (SettingsWrapper::instance().VoidView()) return;
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        BotElement& bot = Bots(i);
        if (!bot.IsLoaded || !bot.Online() || !isConnected(i) ||
            bot.Channel() != QLatin1String("The Void"))
            continue;
        const bool realm = bot.Config.Client().left(2).toUpper() == QLatin1String("D2");
        const QString name =
            realm ? ConvertUsername(bot.UniqueAccount, true, -1) : bot.UniqueAccount;
        bot.Queue.append(QStringLiteral("/unignore ") + name);
    }
}

void TimedEvents::recolourTick() {
    // Idle colours change with time alone; only the list on screen is kept up.
    const int index = SlotTable::instance().CurrentIndex();
    if (index == 0 || !Bots(index).Online() || Bots(index).Users.empty()) return;
    RecolorUserList(index);
}

void TimedEvents::delayedEventsTick() {
    const FileStamp::Burst burst;
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (!m_pendingError.isEmpty()) {
            WriteChat(0, {{255, m_pendingError}});
            m_pendingError.clear();
        }
        BotElement& bot = Bots(i);
        if (const int dropped = bot.takeDroppedEvents())
            WriteChat(i, Status::Warning,
                      QStringLiteral("[BNET] Chat flood: dropped the ") + QString::number(dropped) +
                          QStringLiteral(" oldest held events; they came faster than they could "
                                         "be shown."));
        if (!bot.Online() || bot.DelayCount() == 0) continue;
        try {
            bot.ShowDelayedEvent(i);
        } catch (const std::exception& e) {
            m_pendingError = QStringLiteral("Error - ") + bot.Profile() + QStringLiteral(" - ") +
                             QString::fromLocal8Bit(e.what());
        } catch (...) {
            m_pendingError = QStringLiteral("Error - ") + bot.Profile() +
                             QStringLiteral(" - an unknown failure");
        }
    }
}
