// Bringing group files from anywhere into a library, and groups out of it as files of their own.
//
// Whatever a file holds comes along: groups with their pictures and records, and elements that mean
// nothing here, with class ids, state bits and times. A file that a merge has renumbered ("Sib" and
// a number in the place of "Sub", see mergeGroupFile) is read as what it was.
//
// All of these are one transaction of the file that changes; they throw Cancelled when `progress`
// wants to stop, and leave everything as it was on every failure. The source is read under its lock
// (Locked) and found damaged (Damaged, NotCompoundFile) by its bytes alone.
#pragma once

#include "store/group_operations.h"

#include <filesystem>
#include <optional>

namespace store {

// Copies the file into the library as a top-level group, densely, and never over an existing file.
// The group is called as in the source; in a renumbered source like the file up to its first ".".
// Exists when the library holds a group file of that name, or of the file's name up to its first
// ".", in any case; this is looked at before the source is.
GroupAddress importGroupFile(const Library& library, const std::filesystem::path& source,
                             Progress& progress = noProgress());

enum class SourceAfterMerge : std::uint8_t { Renumbered, AsItWas };

struct MergedGroup {
    GroupAddress group; // what was the source's top-level group
    SourceAfterMerge source = SourceAfterMerge::AsItWas;
    // Why the source is as it was although it was to be renumbered; the merge itself is done.
    std::optional<compound::Error> sourceFailure;
};

// Merges the file into the target's file, its top-level group directly below `target`, named like
// the file up to its first ".". With k, a number from the file's next free one on for which all new
// names are free, the top-level group becomes Sub k and each Sub j becomes Sub (j + k); every group
// keeps its place in the tree. Other elements keep their names as far as these are free.
//
// The source is then renumbered in place, to the numbers of the target with "Sib" before them; its
// original bytes are kept beside it as N.stg.bak (N.stg.bak2, ... when there is one already). It is
// left as it is when it cannot be written, belongs to the library, or is renumbered already.
//
// SameFile when the source is the target's file; Exists when a group directly below `target` has
// the name, in any case.
MergedGroup mergeGroupFile(const Library& library, const GroupAddress& target,
                           const std::filesystem::path& source, Progress& progress = noProgress());

// Writes the group with all groups below it as a group file of its own, whose top-level group is
// named like the file, so that it can be imported again. With a top-level group the elements that
// belong to no group come along. InvalidName when the file's name up to its first "." cannot be a
// top-level group's, or when it does not end in ".stg"; SameFile when `file` is the group's own
// file; Exists. Replace takes the place of an existing file atomically.
void exportGroup(const Library& library, const GroupAddress& group,
                 const std::filesystem::path& file, IfTaken ifTaken = IfTaken::Refuse,
                 Progress& progress = noProgress());

} // namespace store
