// Angles in hundredths of a degree.
#pragma once

namespace imaging::operations {

inline constexpr int kFullTurn = 36'000;
inline constexpr int kQuarterTurn = 9'000;

// The same direction, in [0, kFullTurn).
constexpr int withinOneTurn(int angle) {
    return (angle % kFullTurn + kFullTurn) % kFullTurn;
}

} // namespace imaging::operations
