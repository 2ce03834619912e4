// What is selected in the main window at the moment a command starts.
#pragma once

#include "commands/shown_picture.h"
#include "editing/picture_in_group.h"
#include "groups/selected_group.h"
#include "store/address.h"

#include <QString>

#include <optional>

namespace commands {

using groups::SelectedGroup; // the group whose node is selected in the tree

// One command's view of the selection. Every command gets a fresh one and hands the dialog that it
// opens a copy of its own, so nothing that a dialog does reaches the next command.
struct SelectionContext {
    store::StorageName CurrentStorage; // S; empty without a selected group
    store::FileName CurrentGroup;      // T; empty without a selected group
    store::StorageName CurrentParent;  // empty for a top-level group
    QString groupName;
    QString groupPath;
    bool TopLevelSelected = true; // also without a selected group: what is made goes to the top
    ShownPicture picture;

    bool hasGroup() const { return !CurrentGroup.text.empty(); }

    // The selected group; nothing when none is selected.
    std::optional<store::GroupAddress> group() const;

    // The shown picture as one of the selected group; nothing without a picture or a group. It may
    // have gone meanwhile, and another group than the selected one may be shown.
    std::optional<editing::PictureInGroup> pictureInGroup() const;
};

// The only function that fills a context.
SelectionContext contextOf(const std::optional<SelectedGroup>& group, const ShownPicture& picture);

} // namespace commands
