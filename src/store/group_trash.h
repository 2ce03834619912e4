// Deleting groups so that they can be brought back.
#pragma once

#include "compound/trash.h"
#include "store/group_operations.h"

#include <filesystem>
#include <optional>

namespace store {

// A group that was deleted.
struct TrashedGroup {
    GroupAddress address;
    StorageName parent; // empty for a top-level group
    GroupName name;
    std::filesystem::path file; // in the trash: a group file; empty when the trash does not tell
    std::optional<compound::FileIdentity> state = {}; // of the file there, if the disk can tell
};

// How many groups lie below the group, at whatever depth. 0 when its file cannot be read.
std::size_t countGroupsBelow(const Library& library, const GroupAddress& group);

// Takes a group out of the library. A top-level group's file goes to the trash. A sub-group is
// written with all groups below it as a group file of its own, which goes to the trash, and the
// groups go from their file, in one transaction. Stopping (Cancelled) and every failure leave the
// groups as they were; when it was a sub-group's way to the trash that failed (TrashFailure),
// deleteGroup does without.
TrashedGroup trashGroup(const Library& library, const GroupAddress& group, compound::Trash& trash,
                        Progress& progress = noProgress());

// Brings a deleted group back to where it was, under its old name. Returns its address, which is
// another one, as are those of the groups below it, when other groups have taken the old ones.
// NotFound when the trash was emptied (whatever has the file's name there since) or the group above
// it has gone; Exists when there is a top-level group of that name now. Nothing has changed when it
// throws.
GroupAddress restoreGroup(const Library& library, const TrashedGroup& group, compound::Trash& trash,
                          Progress& progress = noProgress());

} // namespace store
