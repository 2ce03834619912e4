// The disk of the system the program runs on.
//
// - Only regular files are opened; a link is followed to its target. Opening a pipe, a socket or a
//   device is refused without waiting for it.
// - A lock is the kernel's whole-file lock: it ends with the handle or the process, whichever comes
//   first, so nothing stale is ever left behind.
// - sync() and syncFolder() return when the medium has the data (fdatasync and fsync).
// - On a volume that other machines share (platform/shared_volume.h) nothing that was read or
// looked
//   up before the lock was taken is believed after it, and identity() tells nothing.
// - A file that would grow past the user's limit gives TooLarge; the signal for it is ignored from
//   the first use of the disk on.
#pragma once

#include "compound/disk.h"

#include <chrono>
#include <memory>

namespace platform {

// The one native disk; lives as long as the process and may be used from any thread.
compound::Disk& nativeDisk();

// The time of day since 1970, as file systems stamp it.
using TimeOfDay = std::chrono::nanoseconds (*)();

// A disk for tests, which can treat every volume as one that other machines share and tell the
// time.
enum class Volumes { AsTheyAre, AllShared };
std::unique_ptr<compound::Disk> makeNativeDisk(Volumes volumes, TimeOfDay timeOfDay);

} // namespace platform
