#include "crash/states.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iomanip>
#include <iostream>
#include <map>

namespace crash {
namespace {

constexpr std::size_t kFullMeasure = 64;
constexpr const char* kKinds[] = {"power cuts", "failing calls", "chains"};

struct Counts {
    std::size_t of[std::size(kKinds)] = {};
};

std::map<std::string, Counts>& counts() {
    static std::map<std::string, Counts> counts;
    return counts;
}

void tell(const std::string& what, const Counts& line) {
    for (const std::size_t count : line.of) {
        std::cout << std::setw(15) << count;
    }
    std::cout << "  " << what << '\n';
}

class Teller : public ::testing::Environment {
  public:
    void TearDown() override {
        for (const char* kind : kKinds) {
            std::cout << std::setw(15) << kind;
        }
        std::cout << '\n';
        Counts sums;
        for (const auto& [operation, line] : counts()) {
            tell(operation, line);
            for (std::size_t i = 0; i < std::size(kKinds); ++i) {
                sums.of[i] += line.of[i];
            }
        }
        tell("states in all", sums);
    }
};

[[maybe_unused]] const auto* const teller =
    ::testing::AddGlobalTestEnvironment(new Teller); // GoogleTest deletes it

} // namespace

std::size_t statesOfAGap() {
    static const char* const text = std::getenv("TXS_CRASH_STATES");
    static const std::size_t states =
        text == nullptr ? std::size_t{TXS_CRASH_STATES} : std::strtoul(text, nullptr, 10);
    return std::max<std::size_t>(1, states);
}

std::uint32_t firstChain() {
    static const char* const text = std::getenv("TXS_CRASH_CHAIN");
    return text == nullptr ? 1 : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

std::size_t shareOf(std::size_t all) {
    return std::max<std::size_t>(1, all * statesOfAGap() / kFullMeasure);
}

void countStates(Kind kind, const std::string& operation, std::size_t states) {
    counts()[operation].of[static_cast<std::size_t>(kind)] += states;
}

} // namespace crash
