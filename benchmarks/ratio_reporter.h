// Runs the registered benchmarks and closes with ratios of their median real times, each against a
// peer of the same run.
#pragma once

#include <string>
#include <vector>

namespace benchmarks {

struct Ratio {
    std::string title;
    std::string ours; // names of benchmarks as registered, with their arguments
    std::string peer;
    double allowed; // the most that ours/peer may be
};

// Returns the exit status: 0, or 1 when a ratio is worse than allowed.
int runWithRatios(int argc, char** argv, const std::vector<Ratio>& ratios);

} // namespace benchmarks
