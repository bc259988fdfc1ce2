// How long the window's event loop can be kept from its turn: a profile on
// screen receives a channel of 1,000 users at once and then 200 chat events a
// second (talk, and leaves each followed by the same user's return), with the
// user list on screen, while a 10 ms timer stands in for the
// typing the window must keep up with. The counters are the longest and the
// mean gap between its ticks; the baseline is the same timer in the same
// loop with no events arriving.
#include "ChatTraffic.h"
#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "gui/UserListView.h"
#include "gui/frmBot.h"
#include "platform/ListModel.h"
#include "platform/SocketControl.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <functional>

namespace {

constexpr int kUsers = 1000;
constexpr int kEventsPerSecond = 200;
constexpr int kSteadyMilliseconds = 5000;

struct Gaps {
    qint64 longest = 0;
    double mean = 0;
};

// Runs the loop for `ms` with a 10 ms timer, calling `during` on each of its
// ticks, and measures the gaps between them.
Gaps measure(int ms, const std::function<void(qint64 elapsed)>& during) {
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0;
    qint64 longest = 0;
    qint64 total = 0;
    int ticks = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    tick.setInterval(10);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        longest = std::max(longest, now - last);
        total += now - last;
        ++ticks;
        last = now;
        during(now);
    });
    tick.start();
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
    return {longest, ticks ? double(total) / ticks : 0};
}

class Channel {
public:
    explicit Channel(bool withWindow) {
        SlotTable::reset();
        SlotTable::instance().IsLoaded = true;
        slot = SlotTable::instance().LoadProfile(QStringLiteral("Busy"));
        wsBNET(slot).simulateQuietConnection();
        wsBNLS(slot).simulateQuietConnection();
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = QStringLiteral("Busy");
        if (withWindow) {
            window = std::make_unique<frmBot>();
            window->confirmClose = false;
            window->show();
        }
        SlotTable::instance().SelectBot(slot);
        send(chatEvent(7, 0, {}, QStringLiteral("Crowd")));
        // The timers hand on the events that the flood filter holds back.
        TimedEvents::instance().start();
    }
    ~Channel() { TimedEvents::instance().stop(); }
    void send(const QByteArray& frame) { wsBNET(slot).simulateData(frame); }

    int slot = 0;
    std::unique_ptr<frmBot> window;
};

void EventLoopGaps(benchmark::State& state) {
    const bool withEvents = state.range(0) != 0;
    for (auto _ : state) {
        Channel channel(state.range(0) != 2);
        int joined = 0;
        int sent = 0;
        // The channel's users arrive together, as after a join; then the
        // steady stream.
        const Gaps burst = measure(3000, [&](qint64) {
            if (!withEvents || joined > 0) return;
            QByteArray frames;
            for (; joined < kUsers; ++joined) {
                frames += chatEvent(1, joined % 50 == 0 ? 0x02 : 0,
                                    QStringLiteral("user%1").arg(joined), sampleStatstring(joined));
            }
            channel.send(frames);
        });
        const Gaps steady = measure(kSteadyMilliseconds, [&](qint64 elapsed) {
            if (!withEvents) return;
            for (; sent < elapsed * kEventsPerSecond / 1000; ++sent) {
                // A leave and the same user's return take turns, so the list
                // stays at 1,000 names.
                const int kind = sent % 10;
                const QString user = QStringLiteral("user%1").arg((sent / 10) % kUsers);
                if (kind == 8)
                    channel.send(chatEvent(3, 0, user, {}));
                else if (kind == 9)
                    channel.send(chatEvent(2, 0, user, sampleStatstring(sent)));
                else
                    channel.send(chatEvent(
                        5, 0, user, QStringLiteral("message number %1 from the crowd").arg(sent)));
            }
        });
        state.counters["users"] = double(lvUsers(channel.slot).count());
        state.counters["list_on_screen"] =
            channel.window && channel.window->userList()->isVisible() ? 1 : 0;
        state.counters["burst_longest_gap_ms"] = double(burst.longest);
        state.counters["steady_longest_gap_ms"] = double(steady.longest);
        state.counters["steady_mean_gap_ms"] = steady.mean;
        state.counters["events_sent"] = double(sent);
        state.SetIterationTime(double(std::max(burst.longest, steady.longest)) / 1000.0);
    }
}

} // namespace

// 0: the same loop with no events, the baseline; 1: the crowd; 2: the crowd
// with no window, the core's own share.
BENCHMARK(EventLoopGaps)
    ->Arg(0)
    ->Arg(1)
    ->Arg(2)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir home;
    SetHomeFolder(home.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
