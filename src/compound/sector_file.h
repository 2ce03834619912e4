// A file as numbered sectors behind its header. Knows positions and bounds, nothing of meaning.
#pragma once

#include "compound/disk.h"
#include "compound/error.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

namespace compound {

class SectorFile {
  public:
    // Comes before anything else: refresh().
    SectorFile(std::unique_ptr<DiskFile> file, std::uint32_t sectorSize);

    std::uint32_t sectorSize() const { return sectorSize_; }

    // Sectors that lie in the file, a cut last one included; grows as sectors are written.
    std::uint32_t count() const { return count_; }

    // Reads whole neighbouring sectors; what lies behind the end of a cut file reads as zeros.
    // Damaged when the first of them lies outside the file.
    void read(std::uint32_t first, std::span<std::byte> into) { readPart(first, 0, into); }

    // The same from byte `within` of the first sector on, for any number of bytes.
    void readPart(std::uint32_t first, std::uint32_t within, std::span<std::byte> into);

    // Writes whole neighbouring sectors. Those that are passed over behind the file's end get their
    // place on the medium as well, so that none inside the file ever wants for space.
    void write(std::uint32_t first, std::span<const std::byte> bytes) {
        write(first, std::span(&bytes, 1));
    }

    // The same for what lies in several pieces of memory, together whole sectors.
    void write(std::uint32_t first, std::span<const std::span<const std::byte>> parts);

    // The file's length when it ends with sector `count` - 1.
    std::uint64_t lengthOf(std::uint64_t count) const { return (count + 1) * sectorSize_; }

    // Goes on with another handle of the same file, which is `length` bytes long.
    void setDisk(std::unique_ptr<DiskFile> file, std::uint64_t length);
    std::unique_ptr<DiskFile> takeDisk() { return std::move(file_); }

    // Counts anew after the file's length was changed from outside; returns the length.
    std::uint64_t refresh();

    // Lengthens the file to `count` sectors, all with their place on the medium. NoSpace.
    void extend(std::uint32_t count);

    // The same by zeros that are written, where the system could keep a place without: the first
    // bytes that are stored in such a place cost a sync as much as a longer file does.
    void extendByZeros(std::uint32_t count);

    // Sets the file's length to `count` sectors.
    void resize(std::uint32_t count);

    DiskFile& disk() { return *file_; }
    [[noreturn]] void throwDamaged(const std::string& what) const;

  private:
    static std::uint32_t sectorsIn(std::uint64_t length, std::uint32_t sectorSize);

    std::unique_ptr<DiskFile> file_;
    std::uint32_t sectorSize_;
    std::uint32_t count_;
};

} // namespace compound
