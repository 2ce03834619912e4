// How many states the tests of this folder go through, and how many they have gone through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace crash {

// How many random states are tried for each gap between two syncs, and what else there is time for
// in proportion; 64 is the measure. TXS_CRASH_STATES in the environment sets another number.
std::size_t statesOfAGap();

// The number that the first chain of commands is drawn from, the others from those that follow: 1,
// or what TXS_CRASH_CHAIN in the environment says.
std::uint32_t firstChain();

// Of `all`, so many as statesOfAGap() leaves time for; at least one.
std::size_t shareOf(std::size_t all);

enum class Kind : std::uint8_t { PowerCut, FailingCall, Chain };

// The program tells the sums when it ends.
void countStates(Kind kind, const std::string& operation, std::size_t states = 1);

} // namespace crash
