// How much memory the program holds at most; counts every operator new of the test program, and
// lets memory run out.
#pragma once

#include <cstddef>

namespace compound_tests {

// Begins a measurement.
void startAllocationMeter();

// The most bytes held at one time since then, beyond what was held at the start.
std::size_t mostAllocated();

// From then on so many go well, and all others fail for want of memory until they are allowed.
void failAllocationsAfter(std::size_t count);
void allowAllocations();

} // namespace compound_tests
