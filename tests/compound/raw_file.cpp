#include "compound/raw_file.h"

#include <stdexcept>

namespace compound_tests {

using namespace compound::format;

std::uint32_t RawFile::sectorSize() const {
    return 1U << read16(&bytes_.at(header::kSectorShiftAt));
}

std::uint32_t RawFile::sectors() const {
    return static_cast<std::uint32_t>(bytes_.size() / sectorSize()) - 1;
}

std::size_t RawFile::sector(std::uint32_t number) const {
    return (std::size_t{number} + 1) * sectorSize();
}

std::size_t RawFile::fatEntry(std::uint32_t number) const {
    const std::uint32_t perSector = sectorSize() / 4;
    const std::uint32_t fat = get(header::kDifatAt + std::size_t{4} * (number / perSector));
    return sector(fat) + std::size_t{4} * (number % perSector);
}

std::size_t RawFile::entry(std::uint32_t id) const {
    const auto perSector = sectorSize() / static_cast<std::uint32_t>(kEntrySize);
    std::uint32_t at = get(header::kFirstDirectoryAt);
    for (std::uint32_t page = 0; page < id / perSector; ++page) {
        at = get(fatEntry(at));
    }
    if (at >= sectors()) {
        throw std::out_of_range("no such directory entry");
    }
    return sector(at) + kEntrySize * (id % perSector);
}

std::uint32_t RawFile::idOf(std::u16string_view name) const {
    for (std::uint32_t id = 0;; ++id) {
        const std::size_t at = entry(id);
        if (read16(&bytes_.at(at + entry::kNameBytesAt)) != 2 * name.size() + 2) {
            continue;
        }
        bool same = true;
        for (std::size_t i = 0; i < name.size(); ++i) {
            same = same && read16(&bytes_.at(at + 2 * i)) == name[i];
        }
        if (same) {
            return id;
        }
    }
}

std::size_t RawFile::entry(std::u16string_view name) const {
    return entry(idOf(name));
}

std::size_t RawFile::miniFatEntry(std::uint32_t mini) const {
    return sector(get(header::kFirstMiniFatAt)) + std::size_t{4} * mini;
}

} // namespace compound_tests
