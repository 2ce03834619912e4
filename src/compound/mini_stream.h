// The mini stream and its allocation table: streams shorter than 4096 bytes share sectors in
// 64-byte mini sectors. The mini stream is the content of the directory's root entry.
#pragma once

#include "compound/directory_entries.h"
#include "compound/header.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace compound {

class MiniStream {
  public:
    MiniStream(SectorFile& file, Header& header, AllocationTable& table,
               DirectoryEntries& directory);

    // Copies the bytes of a chain of mini sectors from `offset` on. Damaged when the chain is
    // shorter than that.
    void read(std::uint32_t first, std::uint64_t offset, std::span<std::byte> into);

    // Stores bytes in a new chain; returns its first mini sector (kEndOfChain for no bytes).
    std::uint32_t store(std::span<const std::byte> bytes);

    void releaseChain(std::uint32_t first);

    // Has changed pages written to their new places and tells the header and the root entry of
    // them; comes before the directory's own writeOut().
    void writeOut(SectorWrites& writes);
    void committed();

    // The mini sector behind `mini` in its chain, or kEndOfChain.
    std::uint32_t next(std::uint32_t mini);

    // Of both chains, see SectorChain.
    std::uint64_t sectorsFrom(std::uint32_t end);
    void leave(std::uint32_t end);
    void mark(const Stretch& part, SectorBits& pages) const;
    void leavePart(const Stretch& part);

    std::uint32_t entry(std::uint32_t mini); // as it stands in the mini FAT
    std::uint32_t count();                   // mini sectors that the mini stream holds
    std::size_t memory() const { return data_ ? table_->memory() + data_->memory() : 0; }

    // Comes before the first change of another program's file: the header's count and the table's
    // length are put right.
    void makeSound();

  private:
    void set(std::uint32_t mini, std::uint32_t value);
    std::uint32_t allocate();
    std::uint32_t findFree(std::uint32_t page, std::uint32_t end);
    void grow();
    void load();

    void boundMemory();

    SectorFile& file_;
    Header& header_;
    AllocationTable& allocation_;
    DirectoryEntries& directory_;
    std::uint32_t perPage_;     // entries of one mini FAT sector
    std::uint32_t miniPerPage_; // mini sectors of one sector of the mini stream
    unsigned pageShift_;        // of perPage_, a power of two
    unsigned miniShift_;        // and of miniPerPage_
    // Made by load(), when first needed: the mini stream's start is in the root entry.
    std::unique_ptr<SectorChain> table_;
    std::unique_ptr<SectorChain> data_;
    std::uint32_t count_ = 0;
    std::uint32_t hint_ = 0;           // the mini sector last taken
    bool exhausted_ = false;           // looking found nothing, and nothing was freed since
    std::vector<std::uint32_t> freed_; // by this transaction, to be taken again first
};

} // namespace compound
