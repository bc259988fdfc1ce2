#pragma once

// Console output as usual, then ratios between runs of the same program:
// each run's figure is one counter, taken from the plain run or, under
// --benchmark_repetitions, from the mean of the repetitions (never from the
// median or the spread, which come after it).
#include <benchmark/benchmark.h>
#include <iostream>
#include <map>
#include <string>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter {
public:
    struct Ratio {
        std::string label;
        std::string numerator; // function and arguments, e.g. "JoinAndLeave/users:10000"
        std::string denominator;
    };

    RatioReporter(std::string counter, std::vector<Ratio> ratios)
        : ConsoleReporter(OO_Tabular), counter_(std::move(counter)), ratios_(std::move(ratios)) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const bool mean = run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean";
            if (run.run_type == Run::RT_Aggregate && !mean) continue;
            const auto value = run.counters.find(counter_);
            if (value == run.counters.end()) continue;
            const auto& name = run.run_name;
            figures_[name.args.empty() ? name.function_name
                                       : name.function_name + "/" + name.args] =
                value->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const Ratio& r : ratios_) {
            const auto top = figures_.find(r.numerator);
            const auto bottom = figures_.find(r.denominator);
            if (top == figures_.end() || bottom == figures_.end() || bottom->second == 0) continue;
            std::cout << r.label << ": " << top->second / bottom->second << "\n";
        }
    }

private:
    std::string counter_;
    std::vector<Ratio> ratios_;
    std::map<std::string, double> figures_;
};
