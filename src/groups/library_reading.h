// Reading the whole library for the tree: every group file is tested, read and, when its bytes are
// damaged, set aside.
#pragma once

#include "store/group_operations.h"
#include "store/progress.h"

#include <QString>

#include <optional>
#include <vector>

namespace groups {

struct GroupFile {
    store::FileName file;
    store::GroupFileReading reading; // never Damaged, unless the file could not be set aside
    QString trouble = {};            // why it cannot be shown, for the user; empty for a sound file
    // How its file looked just before it was read, if the disk can tell.
    std::optional<compound::FileIdentity> state = {};
};

struct LibraryReading {
    bool reachable = false; // whether the storages folder could be listed
    std::vector<GroupFile> files;
    std::size_t setAside = 0; // how many damaged files were renamed
};

// Files by name without regard to case. Waits for locked files as long as the budget lasts. Damaged
// files are renamed and not delivered; where renaming fails (a read-only folder), the file stays,
// with the cause.
LibraryReading readLibrary(const store::Library& library, const store::LockBudget& budget,
                           store::Progress& progress = store::noProgress()); // counts files

// The sound files only; nothing is renamed or told of the others. Throws when the folder cannot be
// listed.
std::vector<GroupFile> readSoundFiles(const store::Library& library,
                                      const store::LockBudget& budget);

// One file, whatever its state.
GroupFile readAsItIs(const store::Library& library, const store::FileName& file,
                     const store::LockBudget& budget);

// One file again, in the way of the library; nothing when it was set aside.
std::optional<GroupFile> readGroupFileAgain(const store::Library& library,
                                            const store::FileName& file,
                                            const store::LockBudget& budget);

} // namespace groups
