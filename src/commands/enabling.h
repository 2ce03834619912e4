// When the commands can be chosen.
#pragma once

#include "commands/command_tables.h"

#include <QString>

namespace commands {

// Whether a node of the tree is selected.
enum class Selection { None, Group };

// Whether the main menu offers the command for such a selection. A command whose window does not
// exist is never offered, wherever it stands. What needs a group for its very first step is not
// offered without one; what can tell the user what is missing stays.
bool isOffered(Command command, Selection selection);

// The events after which the menu's edit item is set anew.
enum class EditItemCause {
    Group,     // a node was chosen, a picture deleted, the list clicked, the menu state renewed
    Thumbnail, // a thumbnail was chosen
};

// Whether a picture of that type can be edited from the menu. GIF pictures never can; WMF pictures
// open in a window of their own, which is reached after choosing their thumbnail.
bool allowsEditing(const QString& pictureType, EditItemCause cause);

} // namespace commands
