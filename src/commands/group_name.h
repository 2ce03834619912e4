// Whether a new group may have a name.
#pragma once

#include "store/group_operations.h"

#include <optional>

namespace commands {

enum class GroupNameState {
    Free,
    Taken,   // exactly this name, beside the group that would be made
    Invalid, // for the file system or the format, or beside one that differs in case only
};

// Of a group below `parent`, or without one at the top level. Throws what the store throws.
GroupNameState stateOfGroupName(const store::Library& library,
                                const std::optional<store::GroupAddress>& parent,
                                const store::GroupName& name);

} // namespace commands
