// What is selected in the main window at the moment a command starts.
#pragma once

#include "store/address.h"

#include <QString>

#include <optional>

namespace commands {

// The group whose node is selected in the tree.
struct SelectedGroup {
    store::GroupAddress address;
    store::StorageName parent; // the storage it hangs under; empty for a top-level group
    QString name;              // the node's text
    QString path;              // the names from the top level down to the group, for reading
};

// One command's view of the selection. Every command gets a fresh one and hands the dialog that it
// opens a copy of its own, so nothing that a dialog does reaches the next command.
struct SelectionContext {
    store::StorageName CurrentStorage; // S; empty without a selected group
    store::FileName CurrentGroup;      // T; empty without a selected group
    store::StorageName CurrentParent;  // empty for a top-level group
    QString groupName;
    QString groupPath;
    bool TopLevelSelected = true; // also without a selected group: what is made goes to the top
    QString pictureName;          // what the label below the preview shows; may name no picture

    bool hasGroup() const { return !CurrentGroup.text.empty(); }

    // The selected group; nothing when none is selected.
    std::optional<store::GroupAddress> group() const;
};

// The only function that fills a context.
SelectionContext contextOf(const std::optional<SelectedGroup>& group, const QString& pictureName);

} // namespace commands
