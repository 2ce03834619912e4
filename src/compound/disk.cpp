#include "compound/disk.h"

#include <algorithm>

namespace compound {

void DiskFile::writeParts(std::uint64_t offset, std::span<const std::span<const std::byte>> parts) {
    for (const std::span<const std::byte> part : parts) {
        write(offset, part);
        offset += part.size();
    }
}

void DiskFile::extend(std::uint64_t to) {
    constexpr std::uint64_t kPart = std::uint64_t{1} << 20U;
    std::uint64_t at = size();
    const std::vector<std::byte> zeros(
        static_cast<std::size_t>(std::min(kPart, to > at ? to - at : 0)));
    for (; at < to; at += std::min(kPart, to - at)) {
        write(at, std::span(zeros).first(static_cast<std::size_t>(std::min(kPart, to - at))));
    }
}

} // namespace compound
