// Deleting pictures, several at once, so that they can be brought back.
#pragma once

#include "compound/trash.h"
#include "store/picture_operations.h"
#include "store/progress.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace store {

// What becomes of a picture whose name is taken where it goes.
enum class IfNameTaken {
    Replace,  // it takes the other one's place; what came with it, or is itself, is kept
    KeepBoth, // it gets a number behind its name
    Skip,     // it stays away
};

// A picture that was deleted or replaced.
struct TrashedPicture {
    PictureName name;           // as it was stored
    std::string record;         // the bytes of its record stream
    std::filesystem::path file; // in the trash; empty when it could not be read, or is not known
    std::optional<compound::FileIdentity> state = {}; // of the file there, if the disk can tell
};

// Removes the pictures from the group in one transaction. Before that a file of each, called like
// the picture and ending in its type, goes to the trash; a picture that is damaged or larger than
// any picture may be goes without, and so do all of them without a trash (nullptr). Names that the
// group does not hold are passed over. What keeps a file from the trash is a TrashFailure.
//
// `progress` counts pictures. Stopping (Cancelled) and every failure leave the group as it was, and
// take the files out of the trash again, unless it is not known whether the pictures are gone
// (OutcomeUnknown).
std::vector<TrashedPicture> deletePictures(const Library& library, const GroupAddress& group,
                                           std::span<const PictureName> names,
                                           compound::Trash* trash,
                                           Progress& progress = noProgress());

struct RestoredPictures {
    std::vector<PictureName> names;       // that they have now; a number was added to a taken one
    std::vector<compound::Error> missing; // why the others are not back, in their order
};

// Brings such pictures back into the group in one transaction, with their records, and takes their
// files out of the trash; what else stands there by now under a file's name is left alone. What
// they replace goes there; they never stay away because of their names. Nothing has changed when it
// throws.
RestoredPictures restorePictures(const Library& library, const GroupAddress& group,
                                 std::span<const TrashedPicture> pictures, compound::Trash& trash,
                                 IfNameTaken ifTaken = IfNameTaken::KeepBoth,
                                 Progress& progress = noProgress());

} // namespace store
