#include "ratio_reporter.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>

namespace benchmarks {
namespace {

// Keeps the median of every benchmark beside the usual table.
class RememberingReporter : public benchmark::ConsoleReporter {
  public:
    RememberingReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                medians_[run.run_name.function_name + argumentsOf(run)] = run.GetAdjustedRealTime();
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // 0 when the benchmark did not run.
    double medianOf(const std::string& name) const {
        const auto found = medians_.find(name);
        return found == medians_.end() ? 0 : found->second;
    }

  private:
    static std::string argumentsOf(const Run& run) {
        return run.run_name.args.empty() ? std::string() : "/" + run.run_name.args;
    }

    std::map<std::string, double> medians_;
};

} // namespace

int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    RememberingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    int status = 0;
    std::printf("\n%-62s %8s %8s\n", "ratio (median real time, ours / peer)", "measured",
                "allowed");
    for (const Ratio& ratio : ratios) {
        const double ours = reporter.medianOf(ratio.ours);
        const double peer = reporter.medianOf(ratio.peer);
        if (ours <= 0 || peer <= 0) {
            continue;
        }
        const bool good = ours / peer <= ratio.allowed;
        std::printf("%-62s %8.2f %8.2f%s\n", ratio.title.c_str(), ours / peer, ratio.allowed,
                    good ? "" : "  <-- worse");
        status = good ? status : 1;
    }
    return status;
}

} // namespace benchmarks
