// Commands on groups. Each is bound to its tools and menu items by the dispatcher.
#pragma once

namespace commands {

struct CommandCall;

// Asks for a name and makes a group below the selected one or at the top level.
void newGroup(CommandCall& call);

} // namespace commands
