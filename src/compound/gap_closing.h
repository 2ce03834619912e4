// Gives space back that deletions have left: once a good deal of a file stands free, between what
// is in use or behind it, what lies at the file's end moves into the gaps before, and the commit
// cuts the file. Until then it is not cut: to give a few sectors back costs more than to change
// them.
#pragma once

#include "compound/allocation_table.h"
#include "compound/directory_entries.h"
#include "compound/mini_stream.h"
#include "compound/sector_chain.h"
#include "compound/sector_file.h"
#include "compound/stream_content.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace compound {

class GapClosing {
  public:
    // All parts of one file and its transaction.
    GapClosing(SectorFile& file, AllocationTable& table, DirectoryEntries& directory,
               SectorChain& directoryChain, MiniStream& mini, StreamContent& content)
        : file_(file),
          table_(table),
          directory_(directory),
          directoryChain_(directoryChain),
          mini_(mini),
          content_(content) {}

    // Part of the transaction, before its chains are written out. Whether the commit is to cut the
    // file: not as long as little more than `reserve` sectors stands free, nor before the next
    // transaction when the last FAT sector has no place before what moves. Nothing moves when
    // the file's end holds what is in no sound chain; `most`: sectors that move. A larger surplus
    // goes in steps, one a transaction.
    bool run(std::uint64_t reserve, std::uint64_t most, AllocationTable::Look look);

    // Whether run() has moved anything.
    bool hasMoved() const { return hasMoved_; }

  private:
    // What the sectors from `end` on hold: streams, in parts at least; how many sectors it is.
    struct Tail {
        std::uint32_t end = 0;
        std::vector<EntryId> streams;
        std::uint64_t sectors = 0;
    };

    std::uint64_t withPlacesForFat(std::uint32_t used, std::uint64_t length, std::uint64_t surplus);
    void leaveTail(std::uint32_t end);
    std::optional<Tail> tailFrom(std::uint32_t end);
    void addStreams(Tail& tail);

    SectorFile& file_;
    AllocationTable& table_;
    DirectoryEntries& directory_;
    SectorChain& directoryChain_;
    MiniStream& mini_;
    StreamContent& content_;
    bool hasMoved_ = false;
};

} // namespace compound
