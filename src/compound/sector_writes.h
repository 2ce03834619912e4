// What a commit writes: pages of several chains and tables, gathered so that those which lie side
// by side in the file go there in one call, whatever they belong to.
#pragma once

#include "compound/sector_file.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace compound {

class SectorWrites {
  public:
    // The bytes of one sector, which must stay as they are until writeTo(); or taken over.
    void add(std::uint32_t sector, std::span<const std::byte> bytes);
    void add(std::uint32_t sector, std::vector<std::byte> bytes);

    // Writes everything. Throws what the file throws; then any part of it may be written.
    void writeTo(SectorFile& file);

  private:
    struct Write {
        std::uint32_t sector;
        std::span<const std::byte> bytes;
    };
    std::vector<Write> writes_;
    std::deque<std::vector<std::byte>> taken_;
};

} // namespace compound
