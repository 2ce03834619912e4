// What tells two states of a local file apart, and how far that can be relied upon: changes are
// stamped with the time of the clock's last tick.
#pragma once

#include "compound/disk.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <sys/stat.h>

namespace platform {

// What is asked of a file without its time stamps. From Linux 6.13 on a question for these makes
// the next change be stamped exactly, and on some file systems the sync after it writes the inode,
// too.
struct FilePlace {
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::uint64_t size = 0;
    std::uint64_t mount = 0; // no other mount ever gets its number; 0 where the system tells none
    mode_t mode = 0;         // the file's kind only
};

// False with errno set.
bool askPlace(int descriptor, FilePlace& place);
bool askPlace(const std::filesystem::path& path, FilePlace& place);

// The same from a status that was asked for another reason; without the mount.
FilePlace placeOf(const struct stat& status);

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
