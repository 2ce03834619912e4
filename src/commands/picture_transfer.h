// Copying and moving pictures from one group of the library to another.
#pragma once

#include "commands/picture_arrival.h"
#include "store/picture_passage.h"

#include <vector>

namespace commands {

class LibraryView;

struct PicturesOfGroup {
    store::GroupAddress group;
    std::vector<store::PictureName> names;
};

// Asks what becomes of names that are taken, unless the pictures are copied beside themselves, does
// it beside the window in one transaction a file, tells what did not go as wanted, brings the
// window up to date, and lets a move be taken back. Failures are told. Whether any picture has
// come.
bool transferPictures(LibraryView& view, const PicturesOfGroup& pictures,
                      const ArrivalTarget& target, store::PassageKind kind);

} // namespace commands
