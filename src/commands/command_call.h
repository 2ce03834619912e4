// What a command's function gets: the window, its dialogs, what is selected, and where the command
// was chosen.
#pragma once

#include "commands/dialogs.h"
#include "commands/selection_context.h"

namespace commands {

class LibraryView;

// Where a command was chosen. Some commands act differently on the two ways.
enum class Origin { PopUp, Menu };

struct CommandCall {
    LibraryView& view;
    Dialogs& dialogs;
    SelectionContext selection;
    Origin origin;
};

} // namespace commands
