// What other programs and machines have changed in the library since it was read last. A look at it
// compares the states of the group files, reads those that are new or in another state, and stops
// after some, so that a look is short whatever has happened.
//
// A file that cannot be read for the moment (it is locked, or somebody is just writing it) is left
// as it was known and looked at again. Nothing here knows a window: looks are made on a worker.
#pragma once

#include "groups/library_reading.h"
#include "groups/selected_group.h"
#include "store/picture_operations.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace groups {

// A group file as it was when it was read last.
struct KnownFile {
    std::optional<compound::FileIdentity> state; // nothing: to be read again in any case
    // Whether its last change was some seconds old, so that a further one gets another time stamp.
    bool isSettled = false;
    bool wasDamaged = false; // and was left where it is
    bool isNew = true;       // has not been shown yet
};
using KnownFiles = std::map<std::u16string, KnownFile>; // by name

KnownFiles knownFrom(const std::vector<GroupFile>& files);

// The pictures that a window shows.
struct ShownPictures {
    store::GroupAddress group;
    std::optional<store::PictureName> picture; // the selected one
    std::size_t position = 0;                  // of it among the group's pictures
    std::size_t count = 0;                     // of the group's pictures
    enum class Want { Names, Entries } want = Want::Names;
};

// The same group's pictures as they are now.
struct GroupContent {
    ShownPictures asked;
    store::PictureNames names;
    std::vector<store::PictureEntry> entries;    // if they were wanted
    std::optional<store::PictureEntry> selected; // the selected picture, or what took its place
};

// Reads them; a picture that is gone gives way to the one in its position. Throws as the store
// does.
GroupContent readContent(const store::Library& library, const ShownPictures& shown);

struct LookAtLibrary {
    KnownFiles known;
    std::optional<ShownPictures> shown;
    // Whether damaged files may be set aside now. They are once they were found damaged twice, the
    // second time with their last change some seconds old: a file that is being copied grows.
    bool maySetAside = true;
};

struct LibraryChanges {
    bool isReachable = false;            // otherwise nothing else is said
    std::vector<store::FileName> files;  // all that are there, by name without regard to case
    std::vector<GroupFile> read;         // those that were read anew, none of them locked
    std::optional<GroupContent> content; // if its file was one of them and could be read
    // The shown group, if its file is gone and just one has come that holds such a group with as
    // many pictures, the selected one among them.
    std::optional<MovedGroup> moved;
    std::size_t setAside = 0;
    enum class Next { Nothing, Later, AtOnce } next = Next::Nothing; // when to look again
    KnownFiles known;                                                // for the next look
};

// Never throws.
LibraryChanges lookForChanges(const store::Library& library, const LookAtLibrary& look);

} // namespace groups
