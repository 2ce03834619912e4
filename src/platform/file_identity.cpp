#include "platform/file_identity.h"

#include <array>
#include <ctime>
#include <fcntl.h>

namespace platform {
namespace {

// How coarse the stamps of a file system may be that gives one like this.
std::chrono::nanoseconds coarsenessOf(std::chrono::nanoseconds stamp) {
    constexpr std::chrono::nanoseconds kSecond = std::chrono::seconds(1);
    std::chrono::nanoseconds step{1};
    while (step < kSecond && stamp % (10 * step) == std::chrono::nanoseconds(0)) {
        step *= 10;
    }
    return step < kSecond ? step : 2 * kSecond; // as FAT has them
}

} // namespace

std::chrono::nanoseconds sinceEpoch(const struct timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

compound::FileIdentity identityOf(const struct stat& status, std::chrono::nanoseconds now) {
    const std::chrono::nanoseconds changed = sinceEpoch(status.st_ctim);
    // Time stamps go on in ticks of some milliseconds, on some file systems of a second or two.
    const bool settled = now - changed > std::chrono::seconds(3);
    return compound::FileIdentity{status.st_dev,
                                  status.st_ino,
                                  static_cast<std::uint64_t>(status.st_size),
                                  sinceEpoch(status.st_mtim).count(),
                                  changed.count(),
                                  settled};
}

// Only a system that gives every change after a look at the file a time of its own can have stamped
// it later than the last tick; and when there has been a tick since, any later change gets a later
// stamp.
bool isStampedBeforeNow(const struct stat& status) {
    struct timespec tick {};
    (void)::clock_gettime(CLOCK_REALTIME_COARSE, &tick);
    const std::chrono::nanoseconds changed = sinceEpoch(status.st_ctim);
    return changed > sinceEpoch(tick) || changed + coarsenessOf(changed) <= sinceEpoch(tick);
}

bool giveTime(int descriptor, std::chrono::nanoseconds time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    std::array<struct timespec, 2> times{}; // of the last access and the last change
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = static_cast<time_t>(seconds.count());
    times[1].tv_nsec = static_cast<long>((time - seconds).count());
    return ::futimens(descriptor, times.data()) == 0;
}

} // namespace platform
