// Waiting in tests: for a state, never for a time.
#pragma once

#include <QTest>

#include <functional>

// How long anything may take on a machine that has much else to do; reached only by what would
// never end.
inline constexpr int kPatienceMilliseconds = 120'000;

// Serves events until `condition` holds; false when that takes longer than anything may.
inline bool until(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, kPatienceMilliseconds);
}
