#include "platform/thread_time.h"

#include <ctime>

namespace platform {

double processorSecondsOfThisThread() {
    constexpr double kNanosecond = 1e-9;
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * kNanosecond;
}

} // namespace platform
