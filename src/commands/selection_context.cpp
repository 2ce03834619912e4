#include "commands/selection_context.h"

namespace commands {

std::optional<store::GroupAddress> SelectionContext::group() const {
    if (!hasGroup()) {
        return std::nullopt;
    }
    return store::GroupAddress{CurrentGroup, CurrentStorage};
}

SelectionContext contextOf(const std::optional<SelectedGroup>& group, const QString& pictureName) {
    SelectionContext context;
    context.pictureName = pictureName;
    if (group) {
        context.CurrentStorage = group->address.storage;
        context.CurrentGroup = group->address.file;
        context.CurrentParent = group->parent;
        context.groupName = group->name;
        context.groupPath = group->path;
        context.TopLevelSelected = group->parent.text.empty();
    }
    return context;
}

} // namespace commands
