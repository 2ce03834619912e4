// Many picture files becoming pictures in one run: all that can be read and measured, in one
// transaction. A file that cannot is left out and told of in the result.
#pragma once

#include "compound/error.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"
#include "store/progress.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace store {

// The files of a folder that are named as pictures (.bmp .gif .jpg .wmf .emf .ico .cur in any
// case), regular ones only, by name without regard to case. Throws when the folder cannot be
// listed.
std::vector<std::filesystem::path> pictureFilesIn(compound::Disk& disk,
                                                  const std::filesystem::path& folder);

// What a file of a list is called as a picture: its name without the last four characters. Where
// that can be no picture's name, or is one of `reserved` in any case, "Picture" and the file's
// position in the list, counted from 0.
PictureName pictureNameOf(const std::filesystem::path& file, std::size_t position,
                          std::span<const std::u16string> reserved);

struct SkippedFile {
    std::filesystem::path file;
    compound::Error failure; // may name the group file: a picture of that name that was to stay
};

struct FilesAdded {
    GroupAddress group;
    std::size_t pictures = 0; // files that became one; of two of the same name only the later one
    std::vector<SkippedFile> skipped; // in the list's order
};

// Makes a group (see GroupInTheMaking) of the files in the list's order. Of two files that give the
// same name, in any case, the later one stays. `progress` counts files: report(i, total) says that
// the file at position i is being added. Stopping, and every failure that is not one file's, leaves
// no trace: Cancelled, NoSpace, Exists, ...
FilesAdded createGroupFromFiles(const Library& library, const std::optional<GroupAddress>& parent,
                                const GroupName& name, std::span<const std::filesystem::path> files,
                                std::span<const std::u16string> reserved = {},
                                Progress& progress = noProgress());

// The same into a group that is there. With Refuse, a file that gives the name of a picture from
// before is skipped (Exists).
FilesAdded addFiles(const Library& library, const GroupAddress& group,
                    std::span<const std::filesystem::path> files, IfPictureExists ifExists,
                    std::span<const std::u16string> reserved = {},
                    Progress& progress = noProgress());

} // namespace store
