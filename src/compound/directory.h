// The directory: the elements of each storage linked into one red-black tree ([MS-CFB] 2.6.4).
//
// What another program has written may stand in another order and with other colours, whatever the
// header says. So a name that a search misses is looked for by walking the storage's tree, unless
// the tree was found sound before; an element is added to sound trees only, and a tree that is not
// is rebuilt. In a tree that is walked in vain once, searching decides from then on.
#pragma once

#include "compound/directory_entries.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace compound {

class Directory : public DirectoryEntries {
  public:
    Directory(SectorFile& file, SectorChain& chain, std::uint64_t sizeMask)
        : DirectoryEntries(file, chain, sizeMask) {}

    // Makes the root entry of a new file.
    void createRoot();

    // An element that the storage's tree has led to before, and that stands beside the entry
    // `near`, is not searched for. Of several elements of one name, which another program may have
    // written, it may be another one than without.
    std::optional<EntryId> find(EntryId storage, std::u16string_view name,
                                EntryId near = format::kNoEntry);

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

    // Orders elements by name, and those that bear one name by its spelling.
    void sortByName(std::vector<EntryId>& ids);

    // Comes before a transaction is written out. A tree that has grown by a good part is given a
    // shape that later changes find room in: one that was filled in the order of its names is all
    // black but for its end, and taking a name out of it changes colours on the whole way up. May
    // write every page of the directory; isToBalance() tells whether it is to do anything.
    bool isToBalance();
    void balance();
    void committed() { inserted_.clear(); }

    // Rebuilds every tree that is not sound. Damaged for rings and crossings.
    void makeSound();

    // The storages whose trees are known to be sound.
    std::vector<EntryId> soundStorages() const { return {sound_.begin(), sound_.end()}; }
    void trust(const std::vector<EntryId>& storages) {
        sound_.insert(storages.begin(), storages.end());
    }

  private:
    EntryId takeFreeEntry();
    std::optional<EntryId> freeEntryOn(std::uint32_t page);
    void link(EntryId storage, EntryId id);
    void unlink(EntryId storage, EntryId id);
    void makeSound(EntryId storage, std::vector<EntryId> walked);
    void requireSound(EntryId storage);
    void rebuild(EntryId storage, std::vector<EntryId> all);
    void arrange(EntryId storage, const std::vector<EntryId>& ordered);
    bool hasGrownMuch(EntryId storage, std::uint32_t inserted);
    bool isSound(EntryId storage, const std::vector<EntryId>& walked);
    std::optional<EntryId> search(EntryId storage, std::u16string_view name);
    std::optional<EntryId> findAnywhere(EntryId storage, std::u16string_view name);

    std::unordered_set<EntryId> sound_; // storages whose trees were walked and found sound
    std::unordered_map<EntryId, std::vector<EntryId>> walked_; // elements by name, see findAnywhere
    std::vector<EntryId> storageOf_;                           // of the elements reached so far
    std::unordered_map<EntryId, std::uint32_t> inserted_;      // into storages by this transaction
    std::vector<EntryId> freed_; // by this transaction, to be taken again first
};

} // namespace compound
