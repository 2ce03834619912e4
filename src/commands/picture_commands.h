// Commands on pictures. Each is bound to its tools and menu items by the dispatcher.
//
// The menu's commands are for a picture that the label names, and do nothing while the label says
// that there is none; the pop-up's look into the group. Neither asks or tells anything about a
// picture that is not there.
#pragma once

namespace commands {

struct CommandCall;

// Opens the window that stores picture files in the selected group.
void addPicture(CommandCall& call);

// Writes the shown picture to the temporary folder and leaves it there.
void readPicture(CommandCall& call);

// Copies the shown picture to the temporary folder and hands its path over; the second ends the
// window then. Without such a picture nothing is handed over; after a failure the window stays.
void handOver(CommandCall& call);
void handOverAndClose(CommandCall& call);

// Opens the dialog that gives the shown picture another name.
void renamePicture(CommandCall& call);

// Opens the dialog with the shown picture's facts.
void showPictureInfo(CommandCall& call);

} // namespace commands
