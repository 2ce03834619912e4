// The disk of the store's tests.
#pragma once

#include "compound/memory_disk.h"

#include <memory>

namespace store::testing {

// The in-memory disk; where TXS_TEST_FOLDER names a folder, one whose files are real and lie in a
// new folder of that, so that the tests show how the store gets on with that file system.
std::unique_ptr<MemoryDisk> makeTestDisk();

} // namespace store::testing
