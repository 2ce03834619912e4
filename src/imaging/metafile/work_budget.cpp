#include "imaging/metafile/work_budget.h"

#include <algorithm>

namespace imaging::metafile {

namespace {

// A unit is about a pixel filled, some nanoseconds.
constexpr std::uint64_t kUnits = 2'000'000'000;
constexpr std::uint64_t kUnitsBetweenClocks = 1'000'000;
// Units are an estimate; the processor's time catches what they miss.
constexpr double kSeconds = 0.9;
constexpr int kMaximumDepth = 3;

} // namespace

WorkBudget::WorkBudget()
    : left_(kUnits), untilClock_(kUnits - kUnitsBetweenClocks), started_(std::clock()) {}

void WorkBudget::spendPixels(double count) {
    spend(static_cast<std::uint64_t>(std::clamp(count, 0.0, 1e12)));
}

void WorkBudget::enterNested() {
    if (depth_ == kMaximumDepth)
        throw WorkExhausted();
    ++depth_;
}

void WorkBudget::spend(std::uint64_t units) {
    if (units >= left_)
        throw WorkExhausted();
    left_ -= units;
    if (left_ > untilClock_)
        return;
    untilClock_ = left_ > kUnitsBetweenClocks ? left_ - kUnitsBetweenClocks : 0;
    const auto used = static_cast<double>(std::clock() - started_) / CLOCKS_PER_SEC;
    if (used > kSeconds)
        throw WorkExhausted();
}

} // namespace imaging::metafile
