// Tells whether any other process has written to a file, without a look at its time stamps.
#pragma once

#include "compound/disk.h"

#include <memory>

namespace platform {

// A watch on the open file, which it does not keep open. The processes of this machine are meant:
// the file must lie on a volume of its own, and the caller sees to it that a later question is
// about the same mount, since the system says nothing of a volume that is taken away.
//
// Null where the system has no such watch for us, or has too few, and on file systems for which it
// would gain nothing or does not see all that is written.
std::unique_ptr<compound::FileWatch> watchFile(int descriptor);

} // namespace platform
