// Where files of the user's go when the program takes them out of a library.
#pragma once

#include <filesystem>

namespace platform {

// Moves the file to the desktop's trash; where that is impossible (no trash on the volume, a name
// the desktop cannot express) to keptFolder(). Under TXSGRAPHICSLIB_HOME it goes to trashFolder()
// instead. A file of the same name that is there already stays; the new one gets a number. Both
// folders are synced before returning.
// Returns where it lies now; empty when the desktop does not tell.
//
// Throws compound::Error naming the file, which then is still where it was.
std::filesystem::path moveToTrash(const std::filesystem::path& file);

// Gives a file that was moved there the name `to`, durably. NotFound when it is not there any more,
// Exists when `to` is taken; then nothing has changed.
void restoreFromTrash(const std::filesystem::path& trashed, const std::filesystem::path& to);

} // namespace platform
