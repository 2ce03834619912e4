// How much memory the program holds at most; counts every operator new of the test program.
#pragma once

#include <cstddef>

namespace compound_tests {

// Begins a measurement.
void startAllocationMeter();

// The most bytes held at one time since then, beyond what was held at the start.
std::size_t mostAllocated();

} // namespace compound_tests
