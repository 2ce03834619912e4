// The disk of the system the program runs on.
//
// - Only regular files are opened; a link is followed to its target. Opening a pipe, a socket or a
//   device is refused without waiting for it.
// - A lock is the kernel's whole-file lock: it ends with the handle or the process, whichever comes
//   first, so nothing stale is ever left behind.
// - sync() and syncFolder() return when the medium has the data (fdatasync and fsync).
#pragma once

#include "compound/disk.h"

namespace platform {

// The one native disk; lives as long as the process and may be used from any thread.
compound::Disk& nativeDisk();

} // namespace platform
