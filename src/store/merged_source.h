// The source of a merge: opened for changing where that may be, and renumbered afterwards.
#pragma once

#include "store/group_passage.h"
#include "store/storage_access.h"

#include <filesystem>

namespace store {

// Whether the file is one of the library's group files, by whatever path.
bool belongsToLibrary(const Library& library, const std::filesystem::path& file);

// Opens the source for writing where that is wanted and allowed, otherwise for reading.
compound::Access openSource(StorageAccess& source, const Library& library,
                            const std::filesystem::path& path, compound::Access wanted);

// Keeps the bytes of the open source beside it, then renumbers it. Nothing of the source is changed
// on any failure, and nothing kept unless it is not known whether it was (OutcomeUnknown).
void keepAndRenumber(const Library& library, StorageAccess& source,
                     const std::vector<Passage>& passages);

} // namespace store
