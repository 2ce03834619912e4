// Whether a group file's content has really come to another file, before the first one goes.
#pragma once

#include "compound/compound_file.h"
#include "store/address.h"

namespace store {

// Whether `moved` holds every element of `old`, byte for byte, as a new name of the top-level group
// leaves it: only its storages are called otherwise, and the groups' texts may differ. Either file
// may hold more, and be damaged (Damaged).
bool holdsAllOf(compound::CompoundFile& old, const FileName& oldFile, compound::CompoundFile& moved,
                const FileName& movedFile);

} // namespace store
