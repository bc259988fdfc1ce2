// One million small frames arriving in random-sized pieces, cut by the
// Battle.net stream cutter, against a plain copy of the same bytes.
#include "session/PacketWriter.h"
#include "session/StreamCutter.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr int kFrames = 1'000'000;

struct Stream {
    QByteArray bytes;
    std::vector<int> pieces; // sizes of the data events
};

const Stream& stream() {
    static const Stream s = [] {
        Stream out;
        std::mt19937 rng(42);
        std::uniform_int_distribution<int> payload(0, 40);
        for (int i = 0; i < kFrames; ++i)
            out.bytes += PacketWriter::frameBNCS(0x0F, QByteArray(payload(rng), 'x'));
        std::uniform_int_distribution<int> piece(1, 1460);
        for (qsizetype pos = 0; pos < out.bytes.size();) {
            const int n = int(std::min<qsizetype>(piece(rng), out.bytes.size() - pos));
            out.pieces.push_back(n);
            pos += n;
        }
        return out;
    }();
    return s;
}

void CutBncsStream(benchmark::State& state) {
    const Stream& s = stream();
    for (auto _ : state) {
        StreamBuffer in;
        qint64 frames = 0;
        streamcutter::Handlers h{
            [&](PacketReader& r, quint8 id) { frames += id + r.ReadBYTE(); }, {}, {}, {}};
        qsizetype pos = 0;
        for (int n : s.pieces) {
            in.append(QByteArray::fromRawData(s.bytes.constData() + pos, n));
            streamcutter::CutBNCS(in, h);
            pos += n;
        }
        benchmark::DoNotOptimize(frames);
    }
    state.counters["frames/s"] = benchmark::Counter(double(kFrames) * double(state.iterations()),
                                                    benchmark::Counter::kIsRate);
    state.SetBytesProcessed(int64_t(state.iterations()) * s.bytes.size());
}

void MemcpySameBytes(benchmark::State& state) {
    const Stream& s = stream();
    std::vector<char> out(size_t(s.bytes.size()));
    for (auto _ : state) {
        qsizetype pos = 0;
        for (int n : s.pieces) {
            std::memcpy(out.data() + pos, s.bytes.constData() + pos, size_t(n));
            pos += n;
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.counters["frames/s"] = benchmark::Counter(double(kFrames) * double(state.iterations()),
                                                    benchmark::Counter::kIsRate);
    state.SetBytesProcessed(int64_t(state.iterations()) * s.bytes.size());
}

} // namespace

BENCHMARK(CutBncsStream)->Unit(benchmark::kMillisecond);
BENCHMARK(MemcpySameBytes)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
