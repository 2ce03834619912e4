// Counting what the whole library holds.
#pragma once

#include "store/library.h"

#include <cstddef>
#include <cstdint>

namespace store {

struct LibraryCount {
    std::size_t groupFiles = 0;

    // Streams of all storages, other than `Name` and `Parent`. A picture is two of them, its bytes
    // and its record; one that has lost its record is a single one.
    std::uint64_t elements = 0;
};

// Reads the directory of every group file. A file that cannot be read does not count at all; locked
// ones are waited for as long as the budget lasts. Throws only when the folder cannot be listed.
LibraryCount countLibrary(const Library& library, const LockBudget& budget);

} // namespace store
