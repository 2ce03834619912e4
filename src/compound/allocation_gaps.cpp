// The allocation table's gaps: how much stands free inside the file, and what is needed to leave
// its end for them.
#include "compound/allocation_table.h"

#include <algorithm>

namespace compound {

using namespace format;

namespace {

constexpr std::uint32_t kNone = kFreeSector; // no sector

} // namespace

std::uint64_t AllocationTable::surplus(std::uint64_t reserve, std::uint64_t allowed) {
    constexpr std::uint32_t kSample = 8;
    const std::uint32_t end = usedEnd();
    const auto count = static_cast<std::uint32_t>(ranges_.size());
    std::uint64_t free = 0;
    std::uint32_t looked = 0;
    for (std::uint32_t index = 0; index + kSample < count; ++index) { // the reserve lies behind
        if (ranges_[index] || (index + header_.transaction) % count < kSample) {
            free += usableIn(index, end, Free::Now);
            ++looked;
        }
    }
    const std::uint64_t likely = looked == 0 ? 0 : free * count / looked;
    if (count > 4 * kSample && likely <= allowed) {
        return likely;
    }
    free = 0;
    for (std::uint32_t index = 0; index < count && index * perSector_ < end; ++index) {
        free += usableIn(index, end, Free::Now);
    }
    return free - std::min(free, reserve);
}

std::uint64_t AllocationTable::inChainsFrom(std::uint32_t end) {
    std::uint64_t used = 0;
    for (std::uint32_t sector = end; covers(sector); ++sector) {
        const bool isUsed = entry(sector) != kFreeSector && sector != rangeLock();
        used += isUsed && !tables_.contains(sector) ? 1U : 0U;
    }
    return used;
}

void AllocationTable::leave(std::uint32_t end) {
    leftEnd_ = end;
    gapAt_ = 0;
    for (std::uint32_t index = 0; index < ranges_.size(); ++index) {
        Range& range = load(index);
        range.next = 0;
        if (std::uint64_t{index + 1} * perSector_ > end) {
            range.dirty = anyDirty_ = true; // its FAT sector moves, or goes with it
        }
    }
    // The last range keeps some for its FAT sector and for pages, so that they find room in it.
    constexpr std::uint32_t kKeptInLast = 4;
    lastGaps_ = 0;
    for (std::uint32_t sector = (end - 1) / perSector_ * perSector_; sector < end; ++sector) {
        lastGaps_ += isFreeInside(sector / perSector_, sector % perSector_) ? 1U : 0U;
    }
    lastGaps_ -= std::min(lastGaps_, kKeptInLast);
    const bool isDifatBehind = std::any_of(difatSectors_.begin(), difatSectors_.end(),
                                           [&](std::uint32_t at) { return at >= end; });
    if (isDifatBehind) {
        touchDifat(static_cast<std::uint32_t>(fatSectors_.size() - 1));
    }
}

std::uint32_t AllocationTable::allocateGap() {
    while (gapAt_ < leftEnd_) {
        const std::uint32_t index = gapAt_ / perSector_;
        const bool isLast = index == (leftEnd_ - 1) / perSector_;
        const bool isFull = isLast && lastGaps_ == 0;
        const std::uint32_t found =
            isFull ? kNone : findFree(index, gapAt_ % perSector_, kKeptForFat);
        if (found != kNone && found >= gapAt_ && found < leftEnd_) {
            gapAt_ = found + 1;
            lastGaps_ -= isLast ? 1U : 0U;
            return take(found);
        }
        gapAt_ = (index + 1) * perSector_;
    }
    return kNone;
}

} // namespace compound
