// How the groups of one open file come into another one: what each element of the root is called
// there, and which texts tell the groups' nesting.
#pragma once

#include "store/group_layout.h"
#include "store/new_group_file.h"
#include "store/progress.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace store {

// What of a file's root is to pass: one group with all groups below it, and their info storages.
struct PassingGroups {
    StorageName top;
    // What was added to the groups' numbers by a merge that has renumbered the file: the number of
    // its top-level group. 0 in other files.
    std::uint32_t renumberedBy = 0;
    std::vector<GroupEntry> groups; // `top` first, every parent before its children
    std::vector<compound::Element> elements;
};

// Everything in a group file, whatever it is. Damaged when it holds no group of its own name.
PassingGroups passingGroups(StorageHandle root, const std::filesystem::path& path);

// A group of the file with those below it; with the top-level group everything. NotFound.
PassingGroups passingGroups(StorageHandle root, const FileName& file, const StorageName& top);

struct Passage {
    compound::Element element;            // at the source's root
    std::u16string name;                  // at the target's
    std::optional<std::u16string> parent; // of a group, for its `Parent` at the target
    bool isNumbered = false;              // the name follows from the source's number
    bool isParentNumbered = false;
};

// The names at the target.
struct Destination {
    std::u16string top;
    std::u16string parent;   // of the top group
    std::uint32_t shift = 0; // is added to every sub-group's number
};

// The first number, from that of the target's next sub-group on, that can be both the top group's
// and the shift: every new name is free at the target, and at the source with "Sib" before it.
// TooLarge, naming `file`, when there is none.
std::uint32_t freeShift(const PassingGroups& groups, const StorageHandle& source,
                        const StorageHandle& target, const std::filesystem::path& file);

std::vector<Passage> planPassages(const PassingGroups& groups, const StorageHandle& target,
                                  const Destination& destination);

// Copies everything, as part of the target's transaction.
void copyPassages(const std::vector<Passage>& passages, compound::CompoundFile& source,
                  compound::CompoundFile& target, const compound::CopiedBytes& copied);

// Writes a group of the open file, with all groups below it, as a group file of its own whose
// top-level group is called `name`. Cancelled.
void writeGroupInto(NewGroupFile& content, StorageAccess& access, const GroupAddress& group,
                    const std::u16string& name, Progress& progress);

// Gives the source the numbers of the target, with "Sib" before them, as part of its transaction.
void renumberSource(const std::vector<Passage>& passages, StorageHandle source);

} // namespace store
