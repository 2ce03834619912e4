#include "imaging/operations/vector_code.h"

#include <atomic>

namespace imaging::operations {

namespace {

bool processorHasWideCode() {
#if defined(__GNUC__) && defined(__x86_64__)
    return __builtin_cpu_supports("avx2") != 0; // the system's support is part of the answer
#else
    return false;
#endif
}

std::atomic<bool>& wideCodeFlag() {
    static std::atomic<bool> flag = processorHasWideCode();
    return flag;
}

} // namespace

void useVectorCode(VectorCode code) {
    wideCodeFlag() = code == VectorCode::Widest && processorHasWideCode();
}

bool runsWideCode() {
    return wideCodeFlag().load(std::memory_order_relaxed);
}

} // namespace imaging::operations
