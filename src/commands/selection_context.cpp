#include "commands/selection_context.h"

namespace commands {

std::optional<store::GroupAddress> SelectionContext::group() const {
    if (!hasGroup()) {
        return std::nullopt;
    }
    return store::GroupAddress{CurrentGroup, CurrentStorage};
}

std::optional<editing::PictureInGroup> SelectionContext::pictureInGroup() const {
    if (!hasGroup() || !picture.name()) {
        return std::nullopt;
    }
    return editing::PictureInGroup{*group(), groupPath, *picture.name()};
}

SelectionContext contextOf(const std::optional<SelectedGroup>& group, const ShownPicture& picture) {
    SelectionContext context;
    context.picture = picture;
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
