#include "compound/sector_file.h"

#include "compound/format.h"

#include <algorithm>
#include <utility>

namespace compound {

SectorFile::SectorFile(std::unique_ptr<DiskFile> file, std::uint32_t sectorSize)
    : file_(std::move(file)), sectorSize_(sectorSize), count_(0) {}

std::uint32_t SectorFile::sectorsIn(std::uint64_t length, std::uint32_t sectorSize) {
    const std::uint64_t sectors = (length + sectorSize - 1) / sectorSize;
    const std::uint64_t behindHeader = sectors == 0 ? 0 : sectors - 1;
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(behindHeader, format::kMaximumSector));
}

std::uint64_t SectorFile::refresh() {
    const std::uint64_t length = file_->size();
    count_ = sectorsIn(length, sectorSize_);
    return length;
}

void SectorFile::setDisk(std::unique_ptr<DiskFile> file, std::uint64_t length) {
    file_ = std::move(file);
    count_ = sectorsIn(length, sectorSize_);
}

void SectorFile::readPart(std::uint32_t first, std::uint32_t within, std::span<std::byte> into) {
    if (first >= count_) {
        throwDamaged("sector " + std::to_string(first) + " lies outside the file");
    }
    const std::size_t length = file_->read(lengthOf(first) + within, into);
    std::fill(into.begin() + static_cast<std::ptrdiff_t>(length), into.end(), std::byte{0});
}

void SectorFile::write(std::uint32_t first, std::span<const std::span<const std::byte>> parts) {
    extend(first);
    file_->writeParts(lengthOf(first), parts);
    std::size_t bytes = 0;
    for (const std::span<const std::byte> part : parts) {
        bytes += part.size();
    }
    count_ = std::max(count_, first + static_cast<std::uint32_t>(bytes / sectorSize_));
}

void SectorFile::extend(std::uint32_t count) {
    if (count <= count_) {
        return;
    }
    file_->extend(lengthOf(count));
    count_ = count;
}

void SectorFile::extendByZeros(std::uint32_t count) {
    if (count <= count_) {
        return;
    }
    const std::uint32_t before = count_;
    try {
        write(before, std::vector<std::byte>(std::size_t{count - before} * sectorSize_));
    } catch (...) {
        file_->truncate(lengthOf(before)); // a part of it may have been given
        throw;
    }
}

void SectorFile::resize(std::uint32_t count) {
    file_->truncate(lengthOf(count));
    count_ = count;
}

void SectorFile::throwDamaged(const std::string& what) const {
    throw Error(ErrorCode::Damaged, file_->path(), what);
}

} // namespace compound
