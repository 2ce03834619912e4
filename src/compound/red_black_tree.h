// One storage's tree of elements as a red-black tree: insertion and removal on the entries' links.
// Entries keep their numbers; only links and colours change. Without parent links, the way down
// from the root is remembered instead.
// Algorithms: Cormen, Leiserson, Rivest, Stein, "Introduction to Algorithms", chapter 13.
#pragma once

#include "compound/directory_entries.h"

#include <vector>

namespace compound {

class RedBlackTree {
  public:
    RedBlackTree(DirectoryEntries& directory, EntryId storage)
        : directory_(directory), storage_(storage) {}

    // Links an entry / unlinks one of the storage's. False when the tree is found not to be sound
    // on the way: too high, or with colours or an order that the entry's name does not fit. Then
    // all other elements are still linked, and the entry may be.
    bool insert(EntryId id);
    bool remove(EntryId id);

    bool hasSoundColours();

  private:
    enum class Side { Left, Right };
    struct Unsound {}; // thrown inside only

    static Side other(Side side) { return side == Side::Left ? Side::Right : Side::Left; }
    EntryId child(EntryId id, Side side);
    void setChild(EntryId id, Side side, EntryId value);
    void replace(EntryId parent, EntryId old, EntryId by);
    void rotate(EntryId parent, EntryId top, Side to);
    bool isRed(EntryId id);
    void descendTo(EntryId id);
    void goDown(EntryId id);
    EntryId above(std::size_t level) const; // ancestor, the storage above the root
    void exchangeWithSuccessor(EntryId id);
    void link(EntryId id);
    bool unlink(EntryId id);
    void mendAfterInsert(EntryId id);
    void mendAfterRemove(EntryId id);

    DirectoryEntries& directory_;
    EntryId storage_;
    std::vector<EntryId> path_; // from the tree's root to the parent of the entry at work
};

} // namespace compound
