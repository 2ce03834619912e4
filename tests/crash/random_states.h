// How many random states the tests of this folder go through.
#pragma once

#include <cstdlib>

namespace crash {

// Of all tests together; TXS_CRASH_STATES in the environment sets another number.
inline std::size_t randomStates() {
    const char* text = std::getenv("TXS_CRASH_STATES");
    return text == nullptr ? std::size_t{TXS_CRASH_STATES} : std::strtoul(text, nullptr, 10);
}

} // namespace crash
