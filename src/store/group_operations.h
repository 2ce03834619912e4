// Creating, finding, renaming and removing groups. See library.h for errors and transactions.
//
// A group file holds, at its root, a pair of storages for each of its groups: the group storage S
// (streams `Name`, `Parent`, one stream a picture) and the info storage S & "Info" (one record
// stream a picture). Nesting is told by the `Parent` texts alone.
#pragma once

#include "compound/error.h"
#include "store/library.h"
#include "store/names.h"
#include "store/progress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace store {

enum class IfTaken { Refuse, Replace };

struct GroupEntry {
    GroupAddress address;
    GroupName name;     // T for the top-level group, the `Name` text for the others
    StorageName parent; // the group it hangs under; empty for the top-level group
};

enum class GroupFileState {
    Sound,
    Damaged,    // the bytes are wrong, or the file's own info storage is missing
    Locked,     // another program holds it
    Unreadable, // vanished, no permission, ...: nothing is known about its bytes
};

struct GroupFileReading {
    GroupFileState state = GroupFileState::Unreadable;
    std::optional<compound::Error> failure; // for everything but Sound
    // Sound only: the top-level group first, every parent before its children. Groups whose parent
    // is missing, themselves, or part of a ring hang directly under the top-level group.
    std::vector<GroupEntry> groups;

    // Another program has renamed or removed it since it was listed.
    bool isGone() const { return failure && failure->code() == compound::ErrorCode::NotFound; }
};

// Tests a group file and reads its groups in one opening. Never throws for the file's sake.
GroupFileReading readGroupFile(const Library& library, const FileName& file,
                               const LockBudget& budget);

// Without `parent` a top-level group (a new file) is made, otherwise a sub-group of it.
// Replace puts an existing file of the same name into the trash first. Returns the new address.
// InvalidName, Exists.
GroupAddress createGroup(const Library& library, const std::optional<GroupAddress>& parent,
                         const GroupName& name, IfTaken ifTaken = IfTaken::Refuse);

// Whether the name can be a group's on every system and in the file format. Never throws and
// leaves nothing behind. False for what the file system, the format or the text code page cannot
// carry; for a top-level group also when the name with "Info" is too long.
bool testGroupName(const Library& library, const GroupName& name, GroupLevel level) noexcept;

// Whether the folder holds exactly NAME.stg; case counts.
bool groupExists(const Library& library, const GroupName& name);

// Whether the folder holds NAME.stg in any case: two group files whose names differ in case only
// cannot lie side by side on every system. The file `besides` does not count, so that a group can
// change the case of its own name.
bool groupExistsIgnoringCase(const Library& library, const GroupName& name,
                             const FileName& besides = {});

// Whether a group directly below `parent` has exactly this name.
bool subGroupExists(const Library& library, const GroupAddress& parent, const GroupName& name);

// The storage's name for a group that another program has made without a `Name`.
GroupName readGroupName(const Library& library, const GroupAddress& group);

// The storage name of the group's parent as its `Parent` stream tells it; "None" at top level.
StorageName readGroupParent(const Library& library, const GroupAddress& group);

// Returns the name that the group now has. A sub-group changes its `Name` only; a top-level group
// moves to a new file, which is complete and durable before the old one goes. Exists when another
// file has the new name (in any case), or when something else in the group's own file stands where
// its storages would go; then nothing is changed. Where a link stood for the old file, that file
// may stay behind outside of the library, when it cannot be removed.
GroupName renameGroup(const Library& library, const GroupAddress& group, const GroupName& newName,
                      Progress& progress = noProgress());

// Removes a sub-group and all groups below it in one transaction; returns their addresses, the
// deepest first. A top-level group goes with its file: see removeGroupFile.
std::vector<GroupAddress> deleteGroup(const Library& library, const GroupAddress& group);

// Moves a top-level group's file to the trash.
void removeGroupFile(const Library& library, const FileName& file);

// Pictures (streams other than `Name` and `Parent`) and bytes (all streams) of one group storage.
struct GroupSize {
    std::size_t pictures = 0;
    std::uint64_t bytes = 0;
};
GroupSize readGroupSize(const Library& library, const GroupAddress& group);

// Rewrites the group file densely, with sectors of the same size: a complete new file, durable,
// takes the old one's place. A sound file that would only become larger stays as it is.
void compactGroupFile(const Library& library, const std::filesystem::path& path,
                      Progress& progress = noProgress());

} // namespace store
