// A chain of sectors as an array of pages: the directory, the mini FAT and the mini stream.
//
// Pages are read when they are first asked for, more at a time the more of them are asked for. A
// page that is to be written moves to a free sector at once; its bytes stay in memory until
// writeOut().
#pragma once

#include "compound/allocation_table.h"
#include "compound/sector_file.h"
#include "compound/sector_writes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace compound {

class SectorChain {
  public:
    // `what` names the chain in messages.
    SectorChain(SectorFile& file, AllocationTable& table, std::uint32_t first, std::string what);

    std::uint32_t first() const { return sectors_.empty() ? first_ : sectors_.front(); }

    // Pages of the chain; walks it to its end. Damaged when it has none.
    std::uint32_t count();

    // Whether the chain has a page of that index; walks it that far only.
    bool has(std::uint32_t index);

    // The page's bytes, valid as long as the chain lives and letGo() is not called. Damaged when
    // the chain ends before it.
    const std::byte* read(std::uint32_t index) {
        const bool inMemory = index < pages_.size() && pages_[index].bytes;
        return inMemory ? pages_[index].bytes : load(index);
    }
    std::byte* write(std::uint32_t index);

    // Adds a page of `fill` bytes; returns its index.
    std::uint32_t append(std::byte fill);

    // How many of its sectors lie from sector `end` on, and the moving of their pages, which goes
    // wherever the table puts it; one that cannot be read stays. Sectors taken for appending go.
    std::uint64_t sectorsFrom(std::uint32_t end);
    void leave(std::uint32_t end);

    // The same for a part of the file, and for pages known so far.
    void mark(const Stretch& part, SectorBits& pages) const;
    void leavePart(const Stretch& part);

    // Pages known so far, without walking on.
    std::uint32_t walked() const { return static_cast<std::uint32_t>(sectors_.size()); }

    // Bytes of the pages in memory.
    std::size_t memory() const { return memory_; }

    // Forgets all pages, after changed ones were written to their new places; they are read again
    // when they are asked for.
    void letGo();

    bool hasChanges() const { return anyDirty_; }

    // Has all changed pages written to their new places.
    void writeOut(SectorWrites& writes);
    void committed() { anyDirty_ = false; }

    const std::vector<std::uint32_t>& sectors(); // the whole chain

  private:
    struct Page {
        std::byte* bytes = nullptr; // in one of blocks_; null as long as it was not asked for
        bool dirty = false;
    };

    std::uint32_t takeForAppending();
    void giveBackKept();
    void markDirty(std::uint32_t index);
    void addDirty(SectorWrites& writes);
    void move(std::uint32_t index);
    bool isReadable(std::uint32_t index);
    void walkTo(std::uint32_t index);
    const std::byte* load(std::uint32_t index);
    std::uint32_t pagesToLoad(std::uint32_t index) const;
    void loadPages(std::uint32_t index);
    std::byte* newBlock(std::size_t pages);

    SectorFile& file_;
    AllocationTable& table_;
    std::string what_;
    std::uint32_t first_;
    bool complete_;
    bool anyDirty_ = false;
    std::size_t memory_ = 0;
    std::uint32_t loads_ = 0;
    std::uint32_t loadedTo_ = 0; // behind the pages that were read last
    bool hasLetGo_ = false;
    std::vector<std::uint32_t> sectors_; // as far as the chain has been walked
    std::vector<std::uint32_t> kept_;    // taken for the next pages, the next one last
    std::uint32_t appended_ = 0;         // pages that this transaction has added
    std::vector<Page> pages_;
    std::vector<std::uint32_t> dirty_;                 // of the pages, in any order
    std::vector<std::unique_ptr<std::byte[]>> blocks_; // pages read together lie in one
};

} // namespace compound
