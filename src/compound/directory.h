// The directory: the elements of each storage linked into one red-black tree ([MS-CFB] 2.6.4).
//
// Reading is tolerant: a tree in another order or with other colours is walked where searching
// fails. Before the first change every tree that is not sound is rebuilt (makeSound()); from then
// on searching alone decides.
#pragma once

#include "compound/directory_entries.h"

#include <optional>
#include <unordered_map>

namespace compound {

class Directory : public DirectoryEntries {
  public:
    // `trusted`: the trees are known to be sound.
    Directory(SectorFile& file, SectorChain& chain, bool trusted, std::uint64_t sizeMask)
        : DirectoryEntries(file, chain, sizeMask), trusted_(trusted) {}

    // Makes the root entry of a new file.
    void createRoot();

    std::optional<EntryId> find(EntryId storage, std::u16string_view name);

    // Notes that the storage's tree led to the element. Damaged when another storage's tree did so
    // before: trees that cross, or a storage inside itself.
    void reach(EntryId storage, EntryId id);

    // Adds a new element without content. The name must be free.
    EntryId insert(EntryId storage, std::u16string_view name, format::EntryType type);

    // Takes the element out of its storage and frees its entry; the content is the caller's matter.
    void remove(EntryId storage, EntryId id);

    void rename(EntryId storage, EntryId id, std::u16string_view name);

    // The elements of a storage in the order of its tree. Damaged for rings.
    std::vector<EntryId> elements(EntryId storage);

    // Rebuilds every tree that searching could not rely on. Damaged for rings and crossings.
    void makeSound();

  private:
    EntryId takeFreeEntry();
    std::optional<EntryId> freeEntryOn(std::uint32_t page);
    void rebuild(EntryId storage, const std::vector<EntryId>& ordered);
    bool isSound(EntryId storage, const std::vector<EntryId>& walked);
    void sortByName(std::vector<EntryId>& ids);
    std::optional<EntryId> findAnywhere(EntryId storage, std::u16string_view name);

    bool trusted_;
    std::unordered_map<EntryId, std::vector<EntryId>> walked_; // elements by name, see findAnywhere
    std::vector<EntryId> storageOf_;                           // of the elements reached so far
    std::vector<EntryId> freed_; // by this transaction, to be taken again first
};

} // namespace compound
