// One slot in a channel of 1,000 users receives 100,000 chat events (talk,
// joins, leaves and flag changes) as frames on its socket: decoding, the
// handlers, the user list and the chat view, all of it, in events a second.
// Beside it, a look-up of each event's name in the same channel: through the
// slot's name index, and by the walk from the first user that the index
// replaced, as the baseline. The handlers make two or three look-ups an event.
#include "ChatTraffic.h"
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/SocketControl.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <random>
#include <vector>

namespace {

constexpr int kChannel = 1000;
constexpr int kEvents = 100'000;
// Frames arrive in reads of this many events, as from a busy socket.
constexpr int kPerRead = 32;

QString nameOf(int n) {
    static const char* const starts[] = {"Tal", "Mor", "Bre", "Kas", "Dun", "Eli", "Fen", "Gar"};
    return QString::fromLatin1(starts[n % 8]) + QStringLiteral("dor%1").arg(n);
}

// The channel as it stands at the start, and the stream of events that keeps
// it at 1,000 users: leaves and joins take turns, a leave taking someone
// present and a join bringing someone back; talk and flags come from those
// present.
struct Stream {
    QByteArray arrival;            // event 7 and the users already there
    std::vector<QByteArray> reads; // the events, kPerRead to a read
    std::vector<QString> lookups;  // for each event, the name it names
};

const Stream& stream() {
    static const Stream s = [] {
        Stream out;
        std::mt19937 rng(7);
        std::vector<int> present;
        std::vector<int> absent;
        out.arrival += chatEvent(7, 0, {}, QStringLiteral("Crowd"));
        for (int n = 0; n < kChannel; ++n) {
            present.push_back(n);
            out.arrival += chatEvent(1, n % 50 == 0 ? 0x02 : 0x10, nameOf(n), sampleStatstring(n));
        }
        for (int n = kChannel; n < kChannel + 200; ++n)
            absent.push_back(n);
        const auto take = [&](std::vector<int>& from) {
            const size_t at = rng() % from.size();
            const int n = from[at];
            from[at] = from.back();
            from.pop_back();
            return n;
        };
        QByteArray read;
        for (int e = 0; e < kEvents; ++e) {
            const int roll = int(rng() % 100);
            int n;
            if (roll < 20 && present.size() >= size_t(kChannel)) {
                n = take(present);
                absent.push_back(n);
                read += chatEvent(3, 0x10, nameOf(n), {});
            } else if (roll < 20) {
                n = take(absent);
                present.push_back(n);
                read += chatEvent(2, 0x10, nameOf(n), sampleStatstring(n));
            } else if (roll < 30) {
                n = present[rng() % present.size()];
                read += chatEvent(9, roll < 22 ? 0x12 : 0x10, nameOf(n), sampleStatstring(n));
            } else {
                n = present[rng() % present.size()];
                read += chatEvent(5, 0x10, nameOf(n),
                                  QStringLiteral("message number %1 from the crowd").arg(e));
            }
            out.lookups.push_back(nameOf(n));
            if ((e + 1) % kPerRead == 0) {
                out.reads.push_back(read);
                read.clear();
            }
        }
        if (!read.isEmpty()) out.reads.push_back(read);
        return out;
    }();
    return s;
}

// A fresh slot on screen, online, in the channel of 1,000.
int enterChannel() {
    SlotTable::reset();
    SlotTable::instance().IsLoaded = true;
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Busy"));
    wsBNET(slot).simulateQuietConnection();
    wsBNLS(slot).simulateQuietConnection();
    Bots(slot).setOnline(true);
    Bots(slot).UniqueAccount = QStringLiteral("Busy");
    SlotTable::instance().SelectBot(slot);
    wsBNET(slot).simulateData(stream().arrival);
    return slot;
}

void ChatEventsThroughTheSlot(benchmark::State& state) {
    const Stream& s = stream();
    int slot = 0;
    for (auto _ : state) {
        state.PauseTiming();
        slot = enterChannel();
        state.ResumeTiming();
        for (const QByteArray& read : s.reads)
            wsBNET(slot).simulateData(read);
    }
    state.counters["users_at_end"] = double(lvUsers(slot).count());
    state.counters["events/s"] = benchmark::Counter(double(kEvents) * double(state.iterations()),
                                                    benchmark::Counter::kIsRate);
    state.counters["us/event"] =
        benchmark::Counter(double(kEvents) * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// One look-up of each event's name in a channel of 1,000, the people in it
// as they were when the stream began.
template <typename Find> void lookUpEachEventsName(benchmark::State& state, Find find) {
    const Stream& s = stream();
    const int slot = enterChannel();
    const BotElement& bot = Bots(slot);
    for (auto _ : state) {
        int found = 0;
        for (const QString& name : s.lookups)
            found += find(bot, name) > 0;
        benchmark::DoNotOptimize(found);
    }
    state.counters["us/lookup"] =
        benchmark::Counter(double(kEvents) * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void UserFindThroughTheIndex(benchmark::State& state) {
    lookUpEachEventsName(
        state, [](const BotElement& bot, const QString& name) { return bot.UserFind(name); });
}

// Both names in their plain form, lower-cased, compared user by user.
void UserFindByWalkingTheChannel(benchmark::State& state) {
    lookUpEachEventsName(state, [](const BotElement& bot, const QString& name) {
        const QString wanted = ConvertUsername(name, false, -1).toLower();
        for (size_t i = 0; i < bot.Users.size(); ++i) {
            if (bot.Users[i].UsernameFixed.compare(wanted, Qt::CaseInsensitive) == 0)
                return int(i) + 1;
        }
        return 0;
    });
}

} // namespace

BENCHMARK(ChatEventsThroughTheSlot)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(UserFindThroughTheIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(UserFindByWalkingTheChannel)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir home;
    SetHomeFolder(home.path());
    SettingsWrapper& settings = SettingsWrapper::instance();
    settings.setFloodMode(0); // every event straight to its handler
    settings.setTimeStamp(true);
    stream();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
