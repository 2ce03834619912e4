#include "compound/sector_writes.h"

#include <algorithm>
#include <utility>

namespace compound {

void SectorWrites::add(std::uint32_t sector, std::span<const std::byte> bytes) {
    writes_.push_back({sector, bytes});
}

void SectorWrites::add(std::uint32_t sector, std::vector<std::byte> bytes) {
    add(sector, std::span<const std::byte>(taken_.emplace_back(std::move(bytes))));
}

void SectorWrites::writeTo(SectorFile& file) {
    std::sort(writes_.begin(), writes_.end(),
              [](const Write& one, const Write& other) { return one.sector < other.sector; });
    std::vector<std::span<const std::byte>> run;
    for (std::size_t i = 0; i < writes_.size(); ++i) {
        run.push_back(writes_[i].bytes);
        const bool ends = i + 1 == writes_.size() || writes_[i + 1].sector != writes_[i].sector + 1;
        if (ends) {
            file.write(writes_[i].sector + 1 - static_cast<std::uint32_t>(run.size()), run);
            run.clear();
        }
    }
}

} // namespace compound
