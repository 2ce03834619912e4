// Commands on the program as a whole: its view, its help, its end.
#pragma once

namespace commands {

struct CommandCall;

// Changes between thumbnails and list.
void toggleGraphicalPreview(CommandCall& call);

// Takes the last deletion, renaming or move back.
void undo(CommandCall& call);

// The selected pictures go to the clipboard, or come to the selected group from there.
void cutPictures(CommandCall& call);
void copyPictures(CommandCall& call);
void pastePictures(CommandCall& call);

// Selects all pictures of the shown group.
void selectAll(CommandCall& call);

void showEditorOptions(CommandCall& call);

void exitProgram(CommandCall& call);

void showMainHelp(CommandCall& call);

// Tells that there is no search in the help. The sentence is German in both languages.
void searchHelp(CommandCall& call);

// Tells how many groups and pictures the library holds.
void showLibraryInfo(CommandCall& call);

} // namespace commands
