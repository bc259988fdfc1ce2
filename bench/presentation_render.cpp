// 100,000 talk and join events rendered through the event templates into one
// chat view, which empties itself at 65535 characters, against plain appends
// of the same text to a std::string. Peak heap is sampled in a separate pass.
#include "chat/BotElement.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "presentation/EventTemplates.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kEvents = 100'000;

struct Event {
    bool join;
    QString user;
    QString message;
    QString statstring;
    qint32 ping;
    qint32 flags;
};

int benchSlot = 0;

const std::vector<Event>& events() {
    static const std::vector<Event> list = [] {
        std::vector<Event> out;
        std::mt19937 rng(42);
        const QStringList stats{QStringLiteral("RATS 1200 5 12 0 0 0 0 0 RATS"),
                                QStringLiteral("PX3W 3H3W 0 NALC"), QStringLiteral("TAHC"),
                                QStringLiteral("NB2W 0 0 3 1 0 0 1700 9")};
        const QStringList words{QStringLiteral("hello"),       QStringLiteral("anyone"),
                                QStringLiteral("up"),          QStringLiteral("for"),
                                QStringLiteral("a"),           QStringLiteral("game"),
                                QStringLiteral("\u00FFc1red"), QStringLiteral("gg")};
        std::uniform_int_distribution<int> pick(0, 1 << 20);
        for (int i = 0; i < kEvents; ++i) {
            Event e;
            e.join = i % 4 == 0;
            e.user = QStringLiteral("user%1").arg(pick(rng) % 200);
            for (int w = 0, n = 3 + pick(rng) % 12; w < n; ++w)
                e.message += words[pick(rng) % words.size()] + u' ';
            e.statstring = stats[pick(rng) % stats.size()];
            e.ping = pick(rng) % 700 - 1;
            e.flags = pick(rng) % 7 == 0 ? 0x02 : 0x10;
            out.push_back(e);
        }
        return out;
    }();
    return list;
}

void render(ChatDocument& view, const Event& e) {
    const ChatEventTemplates& t = CurrentTheme().events;
    ParseOutput(benchSlot, view, e.join ? t.join : t.talk, e.user, e.message, e.statstring, e.ping,
                e.flags);
}

// The text each event adds to the view, as UTF-8, for the baseline.
const std::vector<std::string>& renderedText() {
    static const std::vector<std::string> lines = [] {
        std::vector<std::string> out;
        ChatDocument view;
        for (const Event& e : events()) {
            const int before = view.length();
            render(view, e);
            const int from = view.length() < before ? 0 : before;
            out.push_back(view.textFrom(from).toStdString());
        }
        return out;
    }();
    return lines;
}

size_t heapInUse() {
    return mallinfo2().uordblks;
}

template <typename Step> double peakHeapKiB(Step step) {
    const size_t base = heapInUse();
    size_t peak = base;
    for (int i = 0; i < kEvents; ++i) {
        step(i);
        if (i % 64 == 0) peak = std::max(peak, heapInUse());
    }
    return double(peak - base) / 1024.0;
}

void RenderThroughTemplates(benchmark::State& state) {
    double peak = 0;
    {
        ChatDocument view;
        peak = peakHeapKiB([&](int i) { render(view, events()[size_t(i)]); });
    }
    for (auto _ : state) {
        ChatDocument view;
        for (const Event& e : events())
            render(view, e);
        benchmark::DoNotOptimize(view.length());
    }
    state.counters["lines/s"] = benchmark::Counter(double(kEvents) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate);
    state.counters["peak_heap_KiB"] = peak;
}

void AppendSameTextToString(benchmark::State& state) {
    const std::vector<std::string>& lines = renderedText();
    const auto append = [&lines](std::string& out, size_t i) {
        if (out.size() >= 65535) out.clear();
        out += lines[i];
    };
    double peak = 0;
    {
        std::string out;
        peak = peakHeapKiB([&](int i) { append(out, size_t(i)); });
    }
    for (auto _ : state) {
        std::string out;
        for (size_t i = 0; i < lines.size(); ++i)
            append(out, i);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.counters["lines/s"] = benchmark::Counter(double(kEvents) * double(state.iterations()),
                                                   benchmark::Counter::kIsRate);
    state.counters["peak_heap_KiB"] = peak;
}

} // namespace

BENCHMARK(RenderThroughTemplates)->Unit(benchmark::kMillisecond);
BENCHMARK(AppendSameTextToString)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir home;
    SetHomeFolder(home.path());
    benchSlot = SlotTable::instance().LoadProfile(QStringLiteral("bench"));
    Bots(benchSlot).UniqueAccount = QStringLiteral("bencher");
    SettingsWrapper::instance().setTimeStamp(true);
    events();
    renderedText();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
