// Pictures that arrive in a group from files and from memory, several at once.
#pragma once

#include "base/bytes.h"
#include "store/picture_passage.h"
#include "store/pictures_from_files.h"

#include <functional>
#include <string>

namespace store {

struct ArrivingPicture {
    std::filesystem::path source; // the file; what failures name
    PictureName name;             // must be valid
    IfNameTaken ifTaken = IfNameTaken::KeepBoth;
    std::string type = {}; // the type code; empty: as the file's name says
    // Gives the bytes, on the thread of the run; empty: they are the file's. It may throw anything,
    // which tells why there are none.
    std::function<base::Bytes()> bytes = {};
};

struct PicturesArrived {
    std::vector<PassedPicture> names;     // of those that came, and what they are called now
    std::vector<SkippedFile> skipped;     // in the list's order
    std::vector<TrashedPicture> replaced; // with a trash
};

// Stores all that can be read and measured, in one transaction; what cannot is skipped. Of two
// arriving pictures with one name the later one gets a number, whatever its `ifTaken`. `progress`
// counts pictures. Stopping (Cancelled), and every failure that is not one picture's, leaves the
// group as it was. What they replace goes to the trash as with passPictures().
PicturesArrived addArriving(const Library& library, const GroupAddress& group,
                            std::span<const ArrivingPicture> pictures,
                            Progress& progress = noProgress(), compound::Trash* trash = nullptr);

} // namespace store
