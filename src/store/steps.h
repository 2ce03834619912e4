// What operations on several groups or pictures do step by step.
#pragma once

#include "compound/disk.h"
#include "compound/trash.h"
#include "store/progress.h"

#include <cstddef>
#include <filesystem>
#include <optional>

namespace store {

// Tells that `done` of `total` pictures are behind the operation. Cancelled, naming `file`, when it
// shall stop.
void goOn(const std::filesystem::path& file, Progress& progress, std::size_t done,
          std::size_t total);

// What stands at a path in the trash once a file has come there.
std::optional<compound::FileIdentity> stateInTrash(compound::Disk& disk,
                                                   const std::filesystem::path& trashed);

// NotFound unless that is still there. Names are given again in a trash that was emptied, and
// nobody else's file is to come back, or to go from there.
void requireInTrash(compound::Disk& disk, const std::filesystem::path& trashed,
                    const std::optional<compound::FileIdentity>& state);

// Removes a file of the program's own from the trash, as if it had never been there. One that
// cannot be removed stays: a copy too many harms nobody.
void removeFromTrash(compound::Disk& disk, compound::Trash& trash,
                     const std::filesystem::path& trashed);

} // namespace store
