#include "imaging/operations/row_bands.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace imaging::operations {

namespace {

// Large enough that taking a band costs nothing, small enough that no core waits long for another.
constexpr std::int64_t kPixelsPerBand = 64 * 1024;

// More cores than that wait for memory.
constexpr std::int64_t kMostThreads = 8;

} // namespace

void forRowBands(int rows, std::int64_t pixelsPerRow, const std::function<void(int, int)>& work) {
    const std::int64_t rowsPerBand = std::clamp<std::int64_t>(
        kPixelsPerBand / std::max<std::int64_t>(pixelsPerRow, 1), 1, std::max(rows, 1));
    const std::int64_t bands = (rows + rowsPerBand - 1) / rowsPerBand;
    std::atomic<std::int64_t> next = 0;
    const auto takeBands = [&] {
        for (std::int64_t band = next++; band < bands; band = next++) {
            const std::int64_t first = band * rowsPerBand;
            work(static_cast<int>(first),
                 static_cast<int>(std::min<std::int64_t>(first + rowsPerBand, rows)));
        }
    };
    const std::int64_t cores = std::thread::hardware_concurrency();
    const std::int64_t threads = std::min({bands, cores, kMostThreads});
    std::vector<std::jthread> helpers;
    try {
        for (std::int64_t i = 1; i < threads; ++i) {
            helpers.emplace_back(takeBands);
        }
    } catch (const std::system_error&) {
        // No further thread to be had: those that run, and this one, do it.
    }
    takeBands();
}

} // namespace imaging::operations
