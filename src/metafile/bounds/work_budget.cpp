#include "metafile/bounds/work_budget.h"

#include <algorithm>

namespace metafile {

namespace {

// A unit is about a pixel filled, some nanoseconds.
constexpr std::uint64_t kUnits = 2'000'000'000;
constexpr std::uint64_t kUnitsBetweenClocks = 100'000;
// Units are an estimate; the thread's time on the processor catches what they miss.
constexpr double kSeconds = 0.9;
constexpr int kMaximumDepth = 3;

} // namespace

WorkBudget::WorkBudget(WorkClock clock)
    : left_(kUnits), untilClock_(kUnits - kUnitsBetweenClocks), clock_(clock), started_(clock_()) {}

void WorkBudget::spendPixels(double count) {
    constexpr double kMost = 1e12;
    // What is no number was made of wild ones.
    spend(count < kMost ? static_cast<std::uint64_t>(std::max(count, 0.0))
                        : static_cast<std::uint64_t>(kMost));
}

WorkBudget::Nesting::Nesting(WorkBudget& budget) : budget_(budget) {
    if (budget_.depth_ == kMaximumDepth) {
        throw WorkExhausted();
    }
    ++budget_.depth_;
}

WorkBudget::Nesting::~Nesting() {
    --budget_.depth_;
}

void WorkBudget::spend(std::uint64_t units) {
    if (units >= left_) {
        giveUp();
    }
    left_ -= units;
    if (left_ > untilClock_) {
        return;
    }
    untilClock_ = left_ > kUnitsBetweenClocks ? left_ - kUnitsBetweenClocks : 0;
    lookAtClock();
}

void WorkBudget::lookAtClock() {
    if (clock_() - started_ > kSeconds) {
        giveUp();
    }
}

void WorkBudget::giveUp() {
    left_ = 0;
    throw WorkExhausted();
}

} // namespace metafile
