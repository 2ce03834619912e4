// A committed file's bytes to be patched by hand: what other programs write, and what no program
// should.
#pragma once

#include "compound/format.h"
#include "compound/memory_disk.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace compound_tests {

class RawFile {
  public:
    explicit RawFile(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

    std::vector<std::byte>& bytes() { return bytes_; }
    std::uint32_t sectorSize() const;
    std::uint32_t sectors() const;

    std::uint32_t get(std::size_t at) const { return compound::format::read32(&bytes_.at(at)); }
    void put(std::size_t at, std::uint32_t value) {
        compound::format::write32(&bytes_.at(at), value);
    }

    // Where things lie in the file: a sector; its FAT entry; the directory entry of that number or
    // of that name; a mini sector's entry in the mini FAT's first sector.
    std::size_t sector(std::uint32_t number) const;
    std::size_t fatEntry(std::uint32_t sector) const;
    std::size_t entry(std::uint32_t id) const;
    std::size_t entry(std::u16string_view name) const;
    std::uint32_t idOf(std::u16string_view name) const;
    std::size_t miniFatEntry(std::uint32_t mini) const;

    // Takes away the mark by which the engine knows its own files.
    void makeForeign() { put(compound::format::header::kTransactionAt, 0); }

  private:
    std::vector<std::byte> bytes_;
};

} // namespace compound_tests
