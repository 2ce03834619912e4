// What tells two states of a local file apart, and how far that can be relied upon: changes are
// stamped with the time of the clock's last tick.
#pragma once

#include "compound/disk.h"

#include <chrono>
#include <sys/stat.h>

namespace platform {

// The state of the file of this status; settled if it was changed so long before `now` that any
// later change gets another stamp, on whatever file system. Times are since 1970.
compound::FileIdentity identityOf(const struct stat& status, std::chrono::nanoseconds now);

std::chrono::nanoseconds sinceEpoch(const struct timespec& time);

// Whether any change after this call gets a later stamp than the file had when its status was
// asked.
bool isStampedBeforeNow(const struct stat& status);

// Gives the open file this time as that of its last change, as exactly as the file system keeps it.
// False for a file of another user's.
bool giveTime(int descriptor, std::chrono::nanoseconds time);

} // namespace platform
