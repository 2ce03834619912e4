// Pictures on their way from one group to another, of the same or of another group file.
#pragma once

#include "store/picture_trash.h"

#include <optional>
#include <span>
#include <vector>

namespace store {

struct PassingPicture {
    PictureName name; // without regard to case
    IfNameTaken ifTaken = IfNameTaken::KeepBoth;
    PictureName as = {}; // what it is to be called there; empty: as it is
};

enum class PassageKind { Copy, Move };

struct PassedPicture {
    PictureName from;
    PictureName to; // as it is called now
};

struct PicturesPassed {
    std::vector<PassedPicture> passed;
    std::vector<PictureName> gone;        // that were not there any more
    std::vector<TrashedPicture> replaced; // with a trash
    // Moving only: why the pictures are still in the first group, too, although they came to the
    // other one.
    std::optional<compound::Error> sourceFailure;
};

// Copies or moves pictures with their records, byte for byte, in one transaction of each file. What
// is moved to another file is durable there before it goes from the first one, so that after a
// crash it is in one of them or in both. Moving to the group where they are changes nothing.
//
// What they replace goes to the trash, if there is one (not nullptr); what keeps it from there is a
// TrashFailure. `progress` counts pictures. Stopping (Cancelled) and every failure that is thrown
// leave both groups and the trash as they were.
PicturesPassed passPictures(const Library& library, const GroupAddress& from,
                            const GroupAddress& to, std::span<const PassingPicture> pictures,
                            PassageKind kind, Progress& progress = noProgress(),
                            compound::Trash* trash = nullptr);

} // namespace store
