// Finding damaged group files, setting them aside, and removing those set aside.
//
// Damaged is a finding about bytes: a file that is locked, unreadable or gone is left alone.
#pragma once

#include "store/group_operations.h"

namespace store {

// Whether the file is a usable group file: a compound file whose root holds the file's base name
// followed by "Info" (without regard to case). `path` may lie outside the library and is only read.
GroupFileState testGroupFile(const Library& library, const std::filesystem::path& path,
                             const LockBudget& budget);

// Renames T.stg to T.err, if readGroupFile() still finds it damaged, and returns whether it has. An
// older T.err goes to the trash first. Locked (and nothing changed) when another program holds the
// file.
bool setAside(const Library& library, const FileName& file);

// Moves every "*.err" of the folder to the trash; returns how many went. A file that cannot be
// moved is left where it is and not counted.
std::size_t removeDamagedFiles(const Library& library);

} // namespace store
