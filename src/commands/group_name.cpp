#include "commands/group_name.h"

namespace commands {

GroupNameState stateOfGroupName(const store::Library& library,
                                const std::optional<store::GroupAddress>& parent,
                                const store::GroupName& name) {
    const bool exists =
        parent ? store::subGroupExists(library, *parent, name) : store::groupExists(library, name);
    if (exists) {
        return GroupNameState::Taken;
    }
    const auto level = parent ? store::GroupLevel::SubGroup : store::GroupLevel::TopLevel;
    const bool isValid = store::testGroupName(library, name, level) &&
                         (parent || !store::groupExistsIgnoringCase(library, name));
    return isValid ? GroupNameState::Free : GroupNameState::Invalid;
}

} // namespace commands
