// The content of streams, each known by its directory entry: in the mini stream below 4096 bytes,
// otherwise in sectors of its own; a stream that passes that limit moves.
//
// Offsets and sizes are bytes. Writing goes to free sectors alone, and the entry in memory names
// them; nothing of it counts before the transaction's commit. What fails on the way leaves the
// entry and the chains in memory half changed: the transaction must then be dropped. Damaged when a
// chain is longer or shorter than the stream's size, NoSpace on a full disk.
#pragma once

#include "base/bytes.h"
#include "compound/directory_entries.h"
#include "compound/mini_stream.h"

#include <cstdint>
#include <span>
#include <vector>

namespace compound {

class StreamContent {
  public:
    StreamContent(SectorFile& file, AllocationTable& table, DirectoryEntries& directory,
                  MiniStream& mini)
        : file_(file), table_(table), directory_(directory), mini_(mini) {}

    // Reads up to `into.size()` bytes; returns how many there were, 0 behind the end.
    std::size_t read(EntryId id, std::uint64_t offset, std::span<std::byte> into);

    // The whole content. Memory is taken only after the chain was found to be as long as the size.
    base::Bytes readAll(EntryId id);

    // Replaces the content.
    void assign(EntryId id, std::span<const std::byte> bytes);

    // Adds to the end. What stood there before is not written again, but for the last sector's
    // part.
    void append(EntryId id, std::span<const std::byte> bytes);

    // Frees what the stream occupies; the entry still names it.
    void release(EntryId id);

    // For a stream of 4096 bytes and more: how many of its sectors lie from sector `end` on, and
    // their moving into gaps before it, as long as there are any. One that cannot be copied stays.
    std::uint64_t sectorsFrom(EntryId id, std::uint32_t end);
    void leave(EntryId id, std::uint32_t end);

  private:
    bool isMini(std::uint64_t size) const { return size < format::kMiniStreamCutoff; }
    const std::vector<std::uint32_t>& chainOf(EntryId id);
    void readSectors(const std::vector<std::uint32_t>& chain, std::uint64_t offset,
                     std::span<std::byte> into);
    void store(std::span<const std::byte> bytes, std::vector<std::uint32_t>& chain);
    void extendChain(std::vector<std::uint32_t>& chain, std::size_t count);
    void writeSectors(std::span<const std::uint32_t> sectors, std::span<const std::byte> bytes);
    bool copyMoved(const std::vector<std::uint32_t>& before,
                   const std::vector<std::uint32_t>& after);
    void appendSectors(EntryId id, std::span<const std::byte> bytes);

    SectorFile& file_;
    AllocationTable& table_;
    DirectoryEntries& directory_;
    MiniStream& mini_;
    EntryId cachedId_ = format::kNoEntry; // whose chain cachedChain_ is
    std::vector<std::uint32_t> cachedChain_;
};

} // namespace compound
