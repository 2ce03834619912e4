// The allocation table's gaps: how much stands free inside the file, and what is needed to leave
// its end for them.
#include "compound/allocation_table.h"

#include <algorithm>

namespace compound {

using namespace format;

namespace {

constexpr std::uint32_t kNone = kFreeSector; // no sector

} // namespace

std::uint64_t AllocationTable::allowedSurplus() const {
    constexpr std::uint64_t kFew = 16;
    constexpr std::uint64_t kPart = 128; // of the file
    return std::max(kFew, file_.count() / kPart);
}

// The home and the last ranges, where the reserve is, are counted in any case.
std::uint64_t AllocationTable::surplus(std::uint64_t reserve, Look look) {
    constexpr std::uint32_t kSample = 8;
    loadDifat();
    const std::uint32_t end = file_.count();
    const auto count = static_cast<std::uint32_t>(ranges_.size());
    const std::uint32_t first = count - std::min(count, kSample); // of the last ones
    const auto freeIn = [&](std::uint32_t index) { return usableIn(index, end, Free::Now); };
    const auto withoutReserve = [&](std::int64_t free) {
        const std::int64_t beyond = free - static_cast<std::int64_t>(reserve);
        return static_cast<std::uint64_t>(std::max<std::int64_t>(beyond, 0));
    };
    std::int64_t near = home() < first ? freeIn(home()) : 0;
    for (std::uint32_t index = first; index < count; ++index) {
        near += freeIn(index);
    }
    std::int64_t sampled = 0;
    std::uint32_t looked = 0;
    const std::uint32_t step = std::max(1U, first / (4 * kSample));
    std::uint32_t loads = 0;
    for (std::uint32_t index = header_.transaction % step; index < first; index += step) {
        if (index != home() && (ranges_[index] || ++loads <= kSample)) {
            sampled += freeIn(index);
            ++looked;
        }
    }
    const std::int64_t known = look == Look::Loaded ? usableInLoaded() : 0;
    const std::uint64_t likely =
        withoutReserve(std::max(known, near + (looked == 0 ? 0 : sampled * first / looked)));
    if (count > 4 * kSample && likely <= allowedSurplus()) {
        return likely;
    }
    std::int64_t free = 0;
    for (std::uint32_t index = 0; index < count; ++index) {
        free += freeIn(index);
    }
    return withoutReserve(free);
}

// Ranges at equal distances may miss what pictures of one size have left.
std::int64_t AllocationTable::usableInLoaded() {
    std::int64_t free = 0;
    for (std::uint32_t index = 0; index < ranges_.size(); ++index) {
        free += ranges_[index] ? usableIn(index, file_.count(), Free::Now) : 0;
    }
    return free;
}

std::uint64_t AllocationTable::inChainsFrom(std::uint32_t end) {
    std::uint64_t used = 0;
    for (std::uint32_t sector = end; covers(sector); ++sector) {
        const bool isUsed = entry(sector) != kFreeSector && !isMarkedLock(sector);
        used += isUsed && !tables_.contains(sector) ? 1U : 0U;
    }
    return used;
}

std::uint64_t AllocationTable::keptAtHome(std::uint64_t reserve, std::uint32_t end) {
    const std::uint64_t kept =
        liesBefore(home(), end) ? std::min<std::uint64_t>(freeIn(home()), spareForChains()) : 0;
    return kept - std::min(kept, reserve);
}

std::uint32_t AllocationTable::lowestPlaceForFat(std::uint32_t end) {
    const std::uint32_t last = (end - 1) / perSector_;
    for (std::uint32_t at = 0; at < perSector_; ++at) {
        if (isFreeInside(last, at)) {
            return last * perSector_ + at;
        }
    }
    return kNone;
}

std::uint64_t AllocationTable::homelessBefore(std::uint32_t end) {
    std::uint64_t homeless = 0;
    for (std::uint32_t index = 0; index < ranges_.size() && liesBefore(index, end); ++index) {
        const bool isAstray = fatSectors_[index] / perSector_ != index;
        const bool hasPlace = freeIn(index) > 0 && (!isAstray || load(index).pending > 0);
        homeless += hasPlace || fatSectors_[index] >= end ? 0U : 1U;
    }
    return homeless;
}

void AllocationTable::leave(std::uint32_t end) {
    leftEnd_ = end;
    gapAt_ = 0;
    for (std::uint32_t index = 0; index < ranges_.size(); ++index) {
        touch(index).next = 0;
        if (fatSectors_[index] >= end || !liesBefore(index, end)) {
            change(index); // its FAT sector moves, or goes with it
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

// A sector for which none is left before the end goes as far to the front behind it as it can: at
// the very end it would keep the file from being cut.
std::uint32_t AllocationTable::allocateGap(std::uint32_t before) {
    while (gapAt_ < before) {
        const std::uint32_t index = gapAt_ / perSector_;
        const bool isBehind = gapAt_ >= leftEnd_;
        const bool isLast = !isBehind && index == (leftEnd_ - 1) / perSector_;
        const bool isFull = isLast && lastGaps_ == 0;
        const std::uint32_t kept = liesBefore(index, leftEnd_) ? keptFromData(index) : kKeptForFat;
        const std::uint32_t found = isFull ? kNone : findFree(index, gapAt_ % perSector_, kept);
        const std::uint32_t end = isLast ? leftEnd_ : (index + 1) * perSector_;
        if (found != kNone && found >= gapAt_ && found < end) {
            if (found >= before) {
                return kNone;
            }
            gapAt_ = found + 1;
            lastGaps_ -= isLast ? 1U : 0U;
            return take(found);
        }
        gapAt_ = end;
    }
    return kNone;
}

bool AllocationTable::leaveFullHome() {
    constexpr std::uint32_t kLittle = 2 * kSmallChange;
    if (!staysHome() || freeInside(home()) >= kLittle) {
        return false;
    }
    const auto other = roomiestRange(2 * kLittle);
    if (other) {
        beginRunIn(*other);
    }
    return other.has_value();
}

bool AllocationTable::staysHome() {
    loadDifat();
    return !isFull() && !leavesHome() && home() < ranges_.size();
}

// How many of the range's sectors lie inside the file.
std::uint32_t AllocationTable::insideOf(std::uint32_t index) const {
    const std::uint32_t first = index * perSector_;
    return std::min(perSector_, file_.count() - std::min(file_.count(), first));
}

bool AllocationTable::isHomeCrowded() {
    if (!staysHome() || fresh_.size() > kSmallChange) {
        return false; // what writes a good deal is not to write more
    }
    const SectorBits free = freeAfterCommit(home());
    return free.runBefore(insideOf(home()), kSmallChange).length < kSmallChange;
}

// Those in chains that the transaction has not moved already, and those of the FAT.
SectorBits AllocationTable::movableAtHome(const SectorBits& inChains) {
    const Stretch inside = homeInside();
    SectorBits movable = inChains;
    for (const std::uint32_t sector : fatSectors_) {
        if (inside.contains(sector) && entry(sector) == kFatSector) {
            movable.insert(sector - inside.begin);
        }
    }
    for (std::uint32_t sector = fresh_.next(inside.begin, inside.end); sector < inside.end;
         sector = fresh_.next(sector + 1, inside.end)) {
        movable.erase(sector - inside.begin);
    }
    return movable;
}

std::optional<Stretch> AllocationTable::emptiestPart(const SectorBits& canMove) {
    constexpr std::uint32_t kLength = 2 * kSmallChange;
    constexpr std::uint32_t kMostUsed = kLength / 2;
    const SectorBits movable = movableAtHome(canMove);
    SectorBits clearable = freeAfterCommit(home());
    for (std::uint32_t at = movable.next(0); at < perSector_; at = movable.next(at + 1)) {
        clearable.insert(at);
    }
    const std::uint32_t inside = insideOf(home());
    std::optional<std::uint32_t> best;
    std::uint32_t least = kMostUsed + 1;
    // A stretch with a sector that cannot move is none, so it is sought between two of them.
    for (std::uint32_t start = clearable.next(0), end = 0; start < inside;
         start = clearable.next(end)) {
        end = std::min(clearable.nextGap(start), inside);
        std::uint32_t used = 0;
        for (std::uint32_t at = start; at < end; ++at) {
            used += movable.contains(at) ? 1U : 0U;
            used -= at >= start + kLength && movable.contains(at - kLength) ? 1U : 0U;
            if (at + 1 >= start + kLength && used < least) {
                least = used;
                best = at + 1 - kLength;
            }
        }
    }
    if (!best || freeInside(home()) <= kLength + least) {
        return std::nullopt;
    }
    const std::uint32_t begin = home() * perSector_ + *best;
    return Stretch{begin, begin + kLength};
}

void AllocationTable::leavePart(const Stretch& part) {
    leftPart_ = part;
    for (std::uint32_t index = 0; index < fatSectors_.size(); ++index) {
        if (part.contains(fatSectors_[index])) {
            change(index);
        }
    }
}

} // namespace compound
