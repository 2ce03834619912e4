// How the storages of one open group file make groups: which are groups, which are info storages,
// and which group hangs under which.
#pragma once

#include "store/group_operations.h"
#include "store/storage_access.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace store {

// The storages at the root, in the file's order.
std::vector<std::u16string> rootStorages(StorageHandle root);

// The storage of the file's own (top-level) group as the file spells it; nothing when the root
// holds no info storage for it.
std::optional<StorageName> findTopLevelGroup(StorageHandle root, const FileName& file);

// What `Parent` texts name. After a merge has renumbered a file they still say "Sub" and the
// number, while the storages are called "Sib" and the number.
enum class ParentTexts { NameStorages, NameRenumbered };

// All groups of the file: the top-level group first, every parent before its children, each parent
// resolved to a group that is there.
std::vector<GroupEntry> readGroups(StorageHandle root, const FileName& file, const StorageName& top,
                                   ParentTexts parentTexts = ParentTexts::NameStorages);

// The `Name` or `Parent` text of a group storage; nothing when the stream is missing or damaged.
std::optional<std::u16string> readGroupText(const StorageHandle& group, std::u16string_view stream);

// Replaces the `Name` or `Parent` text of a group storage.
void writeGroupText(StorageHandle group, std::u16string_view stream, std::u16string_view text);

// Creates the pair of storages S and S & "Info" with the two texts.
void createGroupPair(StorageHandle root, const StorageName& storage, std::u16string_view parent,
                     std::u16string_view name);

struct DestroyedGroups {
    std::vector<GroupAddress> groups; // the deepest first
    std::size_t pictures = 0;         // that went with them; of each group two count at the most
};

// Destroys a sub-group and all groups below it, as part of the file's transaction. InvalidName for
// a top-level group.
DestroyedGroups destroyGroup(StorageAccess& access, const GroupAddress& group);

// Has a top-level group's file moved to the trash; returns what `moveToTrash` does.
std::filesystem::path
throwAway(const Library& library, const FileName& file,
          const std::function<std::filesystem::path(const std::filesystem::path&)>& moveToTrash);

// The text that tells a group to lie below `parent`: the storage as the root spells it.
// InvalidName, naming `file`, when the text code page cannot carry it.
std::u16string parentText(const StorageHandle& root, const StorageName& parent,
                          const std::filesystem::path& file);

// The number of a storage called `prefix` and a number; 0 for every other name.
std::uint32_t storageNumber(std::u16string_view name, std::u16string_view prefix = kSubGroupPrefix);

// `prefix` and the number.
std::u16string numberedStorage(std::uint32_t number, std::u16string_view prefix = kSubGroupPrefix);

// The storage name of a file's next sub-group.
StorageName nextSubGroup(StorageHandle root);

} // namespace store
