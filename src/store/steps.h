// What operations on several groups or pictures do step by step.
#pragma once

#include "compound/disk.h"
#include "compound/trash.h"
#include "store/progress.h"

#include <cstddef>
#include <filesystem>

namespace store {

// Tells that `done` of `total` pictures are behind the operation. Cancelled, naming `file`, when it
// shall stop.
void goOn(const std::filesystem::path& file, Progress& progress, std::size_t done,
          std::size_t total);

// Removes a file of the program's own from the trash, as if it had never been there. One that
// cannot be removed stays: a copy too many harms nobody.
void removeFromTrash(compound::Disk& disk, compound::Trash& trash,
                     const std::filesystem::path& trashed);

} // namespace store
