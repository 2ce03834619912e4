// Commands on pictures. Each is bound to its tools and menu items by the dispatcher.
#pragma once

namespace commands {

struct CommandCall;

// Opens the window that stores picture files in the selected group.
void addPicture(CommandCall& call);

} // namespace commands
