// The 512-byte header: the root of everything, and the only thing a commit overwrites.
#pragma once

#include "compound/disk.h"
#include "compound/format.h"

#include <array>
#include <cstdint>
#include <vector>

namespace compound {

struct Header {
    std::uint16_t majorVersion = 4; // 3: 512-byte sectors, 4: 4096-byte sectors
    std::uint32_t directorySectors = 0;
    std::uint32_t fatSectors = 0;
    std::uint32_t firstDirectory = format::kEndOfChain;
    std::uint32_t transaction = 0;
    std::uint32_t firstMiniFat = format::kEndOfChain;
    std::uint32_t miniFatSectors = 0;
    std::uint32_t firstDifat = format::kEndOfChain;
    std::uint32_t difatSectors = 0;
    std::array<std::uint32_t, format::kHeaderDifatEntries> difat{};

    std::uint32_t sectorSize() const { return majorVersion == 3 ? 512 : 4096; }
    bool operator==(const Header&) const = default;
};

// Reads and checks the header. NotCompoundFile, Damaged.
Header readHeader(DiskFile& file);

std::array<std::byte, format::kHeaderSize> encodeHeader(const Header& header);

} // namespace compound
