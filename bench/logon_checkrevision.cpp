// The version check over game files of 50, 30 and 20 MB, against a loop that only sums the
// same files' 32-bit words. The check does a few register operations per word, so it should
// run at a good fraction of the plain loop's speed; the ratios are printed at the end.

#include "Ratios.h"
#include "logon/BncsUtil.h"
#include "logon/ChecksumFormula.h"
#include "logon/PaddedFileReader.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr const char* kFormula = "A=1054538081 B=741521288 C=797042342 4 A=A^S B=B-C C=C^A A=A+B";
constexpr std::size_t kMegabyte = 1 << 20;

// Three files of pseudo-random bytes in a scratch folder, removed at the end of the run.
class GameFiles {
public:
    GameFiles() {
        std::string pattern = (std::filesystem::temp_directory_path() / "logon-bench-XXXXXX");
        if (!::mkdtemp(pattern.data())) std::abort();
        folder_ = pattern;
        std::uint64_t state = 0x9E3779B97F4A7C15;
        for (std::size_t megabytes : {50, 30, 20}) {
            std::vector<std::uint8_t> bytes(megabytes * kMegabyte + 123);
            for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
                state ^= state << 13;
                state ^= state >> 7;
                state ^= state << 17;
                std::memcpy(&bytes[i], &state, 8);
            }
            const auto path = folder_ / ("file" + std::to_string(paths_.size() + 1) + ".bin");
            std::ofstream(path, std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
            paths_.push_back(path.string());
            contents_.push_back(std::move(bytes));
            size_ += contents_.back().size();
        }
    }
    ~GameFiles() { std::filesystem::remove_all(folder_); }

    const std::vector<std::string>& paths() const { return paths_; }
    const std::vector<std::vector<std::uint8_t>>& contents() const { return contents_; }
    std::int64_t size() const { return std::int64_t(size_); }

private:
    std::filesystem::path folder_;
    std::vector<std::string> paths_;
    std::vector<std::vector<std::uint8_t>> contents_;
    std::size_t size_ = 0;
};

GameFiles* files = nullptr;

std::uint32_t sumWords(logon::ByteView data) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i + 4 <= data.size(); i += 4) {
        std::uint32_t word;
        std::memcpy(&word, &data[i], 4);
        sum += word;
    }
    return sum;
}

// From disk (page cache), as the logon does it.
void VersionCheck(benchmark::State& state) {
    const auto& p = files->paths();
    for (auto _ : state) {
        std::uint32_t checksum = 0;
        if (!logon::checkRevisionFlat(kFormula, p[0], p[1], p[2], 3, checksum))
            state.SkipWithError("version check refused");
        benchmark::DoNotOptimize(checksum);
    }
    state.SetBytesProcessed(state.iterations() * files->size());
}

void PlainWordSum(benchmark::State& state) {
    logon::PaddedFileReader reader;
    for (auto _ : state) {
        std::uint32_t sum = 0;
        for (const auto& path : files->paths())
            reader.read(path, [&](logon::ByteView data) { sum += sumWords(data); });
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * files->size());
}

// The same two loops over bytes already in memory: the arithmetic alone.
void VersionCheckInMemory(benchmark::State& state) {
    const auto formula = logon::ChecksumFormula::parse(kFormula);
    for (auto _ : state) {
        auto checksum = formula->initialState();
        for (const auto& bytes : files->contents())
            formula->run(checksum, bytes);
        benchmark::DoNotOptimize(checksum);
    }
    state.SetBytesProcessed(state.iterations() * files->size());
}

void PlainWordSumInMemory(benchmark::State& state) {
    for (auto _ : state) {
        std::uint32_t sum = 0;
        for (const auto& bytes : files->contents())
            sum += sumWords(bytes);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * files->size());
}

BENCHMARK(VersionCheck)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(PlainWordSum)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(VersionCheckInMemory)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(PlainWordSumInMemory)->Unit(benchmark::kMillisecond)->MinTime(2);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    GameFiles generated;
    files = &generated;
    // The speed of each check as a share of its plain loop.
    RatioReporter reporter("bytes_per_second",
                           {{"VersionCheck / PlainWordSum", "VersionCheck", "PlainWordSum"},
                            {"VersionCheckInMemory / PlainWordSumInMemory", "VersionCheckInMemory",
                             "PlainWordSumInMemory"}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
