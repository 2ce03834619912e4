// Commands on groups. Each is bound to its tools and menu items by the dispatcher.
#pragma once

namespace commands {

struct CommandCall;

// Asks for a name and makes a group below the selected one or at the top level.
void newGroup(CommandCall& call);

// Makes a group of a folder's pictures, from the menu below whatever group is selected, from the
// pop-up as newGroup() would; the user may choose otherwise.
void createGroupFromFolder(CommandCall& call);

// Brings a group file into the library, beside a top-level group or below a sub-group; the user may
// choose otherwise.
void importGroup(CommandCall& call);

// Asks for another name for the selected group. Also opens without one, to say what is missing.
void renameGroup(CommandCall& call);

// Asks, then removes the selected group with all groups below it, a top-level group by moving its
// file to the trash, and selects the tree's first group. A failure is told and the node stays.
void deleteGroup(CommandCall& call);

// Shows what there is to know about the selected group, or says that none is selected.
void showGroupInfo(CommandCall& call);

// Prints the selected group's pictures, or writes them as PDF.
void printCatalogue(CommandCall& call);

} // namespace commands
