// The on-disk structures of a compound file, and nothing else. All numbers are little-endian.
// Source: [MS-CFB] "Compound File Binary File Format", sections 2.2 to 2.6.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace compound::format {

inline constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0,
                                                           0xA1, 0xB1, 0x1A, 0xE1};
inline constexpr std::size_t kHeaderSize = 512;
inline constexpr std::size_t kHeaderDifatEntries = 109;
inline constexpr std::size_t kEntrySize = 128;
inline constexpr std::uint32_t kMiniSectorSize = 64;
inline constexpr std::uint32_t kMiniStreamCutoff = 4096; // smaller streams live in the mini stream
inline constexpr std::uint64_t kRangeLockOffset = 0x7FFFFFFF;
inline constexpr std::uint16_t kMinorVersion = 0x003E;
inline constexpr std::uint16_t kLittleEndian = 0xFFFE;

// Sector numbers, and the FAT's values for sectors.
inline constexpr std::uint32_t kMaximumSector = 0xFFFFFFFA;
inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF; // no sibling, no child

// Byte offsets in the header.
namespace header {
inline constexpr std::size_t kMinorVersionAt = 24;
inline constexpr std::size_t kMajorVersionAt = 26;
inline constexpr std::size_t kByteOrderAt = 28;
inline constexpr std::size_t kSectorShiftAt = 30;
inline constexpr std::size_t kMiniSectorShiftAt = 32;
inline constexpr std::size_t kDirectorySectorsAt = 40; // zero in version 3
inline constexpr std::size_t kFatSectorsAt = 44;
inline constexpr std::size_t kFirstDirectoryAt = 48;
inline constexpr std::size_t kTransactionAt = 52;
inline constexpr std::size_t kMiniCutoffAt = 56;
inline constexpr std::size_t kFirstMiniFatAt = 60;
inline constexpr std::size_t kMiniFatSectorsAt = 64;
inline constexpr std::size_t kFirstDifatAt = 68;
inline constexpr std::size_t kDifatSectorsAt = 72;
inline constexpr std::size_t kDifatAt = 76;
static_assert(kDifatAt + 4 * kHeaderDifatEntries == kHeaderSize);
} // namespace header

// Byte offsets in a directory entry.
namespace entry {
inline constexpr std::size_t kNameAt = 0;       // 32 units, the last one zero
inline constexpr std::size_t kNameBytesAt = 64; // with the terminating zero; 0 for a free entry
inline constexpr std::size_t kTypeAt = 66;
inline constexpr std::size_t kColourAt = 67;
inline constexpr std::size_t kLeftAt = 68;
inline constexpr std::size_t kRightAt = 72;
inline constexpr std::size_t kChildAt = 76;
inline constexpr std::size_t kClassIdAt = 80;
inline constexpr std::size_t kStateBitsAt = 96;
inline constexpr std::size_t kCreatedAt = 100;
inline constexpr std::size_t kModifiedAt = 108;
inline constexpr std::size_t kStartAt = 116;
inline constexpr std::size_t kSizeAt = 120; // the upper half has no meaning in version 3
static_assert(kSizeAt + 8 == kEntrySize);
} // namespace entry

enum class EntryType : std::uint8_t { Free = 0, Storage = 1, Stream = 2, Root = 5 };
enum class Colour : std::uint8_t { Red = 0, Black = 1 };

inline std::uint16_t read16(const std::byte* at) {
    return static_cast<std::uint16_t>(std::to_integer<unsigned>(at[0]) |
                                      std::to_integer<unsigned>(at[1]) << 8U);
}

inline std::uint32_t read32(const std::byte* at) {
    return std::uint32_t{read16(at)} | std::uint32_t{read16(at + 2)} << 16U;
}

inline std::uint64_t read64(const std::byte* at) {
    return std::uint64_t{read32(at)} | std::uint64_t{read32(at + 4)} << 32U;
}

inline void write16(std::byte* at, std::uint16_t value) {
    at[0] = static_cast<std::byte>(value & 0xFFU);
    at[1] = static_cast<std::byte>(value >> 8U);
}

inline void write32(std::byte* at, std::uint32_t value) {
    write16(at, static_cast<std::uint16_t>(value & 0xFFFFU));
    write16(at + 2, static_cast<std::uint16_t>(value >> 16U));
}

inline void write64(std::byte* at, std::uint64_t value) {
    write32(at, static_cast<std::uint32_t>(value & 0xFFFFFFFFU));
    write32(at + 4, static_cast<std::uint32_t>(value >> 32U));
}

} // namespace compound::format
