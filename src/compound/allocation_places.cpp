// The allocation table's choice of places: which free sector is taken for what.
#include "compound/allocation_table.h"

#include <algorithm>

namespace compound {

using namespace format;

namespace {

constexpr std::uint32_t kNone = kFreeSector; // no sector

} // namespace

// A free sector of the range, from its entry `from` on and then from its start; kNone when no more
// than `reserve` are left.
std::uint32_t AllocationTable::findFree(std::uint32_t index, std::uint32_t from,
                                        std::uint32_t reserve) {
    if (freeIn(index) <= reserve) {
        return kNone;
    }
    const Range& range = load(index);
    for (std::uint32_t i = 0; i < perSector_; ++i) {
        const std::uint32_t at = (from + i) % perSector_;
        const std::uint32_t sector = index * perSector_ + at;
        if (range.at(at) == kFreeSector && isUsable(sector) && !pending_.contains(sector)) {
            return sector;
        }
    }
    return kNone;
}

// Free sectors of a range that are left when one is taken for `purpose`.
std::uint32_t AllocationTable::kept(Purpose purpose) const {
    if (purpose == Purpose::Fat) {
        return 0;
    }
    const bool isFull = insideLimit_ != kMaximumSector;
    return purpose == Purpose::Move || isFull ? kKeptForFat : kKeptForMoving;
}

std::uint32_t AllocationTable::allocate(std::uint32_t near, Purpose purpose) {
    try {
        return allocateOnce(near, purpose);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace || !stayInside()) {
            throw;
        }
    }
    return allocateOnce(near, purpose);
}

std::uint32_t AllocationTable::allocateOnce(std::uint32_t near, Purpose purpose) {
    loadDifat();
    const std::uint32_t home = homeOf(near, purpose);
    if (home < ranges_.size()) {
        const std::uint32_t found = findFreeInRun(home, kept(purpose));
        if (found != kNone) {
            return takePlaced(found);
        }
    }
    for (std::uint32_t index = 0; index < ranges_.size(); ++index) {
        // Only what is in memory anyway, and the last one, in which the file can grow.
        if (!ranges_[index] && index + 1 != ranges_.size() && canGrow()) {
            continue;
        }
        const std::uint32_t found = findFreeInRun(index, std::max(kept(purpose), kKeptForFat));
        if (found != kNone) {
            return takePlaced(found);
        }
    }
    addRange();
    return takePlaced(findFree(static_cast<std::uint32_t>(ranges_.size() - 1), 0, kKeptForFat));
}

// A transaction that gives back a good deal: what it writes goes as far to the front as it can, so
// that the file can be cut.
bool AllocationTable::freesMuch() const {
    return pending_.size() > fresh_.size() + perSector_ / 16;
}

// The range to look into first: a FAT sector stays in its own.
std::uint32_t AllocationTable::homeOf(std::uint32_t near, Purpose purpose) {
    if (purpose != Purpose::Fat && !freesMuch()) {
        const auto count = static_cast<std::uint32_t>(ranges_.size());
        for (std::uint32_t at = kFirstChainRange; at < count; at += kChainRangeStep) {
            if (freeIn(at) > kKeptForMoving) {
                return at;
            }
        }
    }
    return near < kMaximumSector && (purpose == Purpose::Fat || !freesMuch()) ? near / perSector_
                                                                              : 0;
}

bool AllocationTable::isFreeInside(std::uint32_t index, std::uint32_t at) {
    const std::uint32_t sector = index * perSector_ + at;
    return sector < file_.count() && load(index).at(at) == kFreeSector && isUsable(sector) &&
           !pending_.contains(sector);
}

// The first entry of a run of free sectors inside the file that has room for what a small change
// writes, or of the longest one; the range's first entry when there is none.
std::uint32_t AllocationTable::startOfRun(std::uint32_t index) {
    constexpr std::uint32_t kEnough = 8;
    std::uint32_t start = 0;
    std::uint32_t longest = 0;
    std::uint32_t length = 0;
    for (std::uint32_t at = 0; at < perSector_ && longest < kEnough; ++at) {
        length = isFreeInside(index, at) ? length + 1 : 0;
        if (length > longest) {
            longest = length;
            start = at + 1 - length;
        }
    }
    return start;
}

// A free sector of the range, kNone when no more than `reserve` are left. The sectors that one
// transaction takes lie in a row where they can, so that they are written in one go.
std::uint32_t AllocationTable::findFreeInRun(std::uint32_t index, std::uint32_t reserve) {
    if (freeIn(index) <= reserve) {
        return kNone;
    }
    std::optional<std::uint32_t>& next = load(index).next;
    if (!next) {
        next = freesMuch() ? 0 : startOfRun(index);
    }
    for (std::uint32_t i = 0; i < perSector_; ++i) {
        const std::uint32_t at = (*next + i) % perSector_;
        if (isFreeInside(index, at)) {
            next = at + 1;
            return index * perSector_ + at;
        }
    }
    return findFree(index, 0, reserve); // behind the file's end
}

// As take(), for what is written at the commit: that must not fail for want of space then.
std::uint32_t AllocationTable::takePlaced(std::uint32_t sector) {
    file_.extend(sector + 1);
    return take(sector);
}

// Where a transaction begins to store data: a range with a good many free sectors among a few that
// are looked at, different ones in each transaction; otherwise the last one.
std::uint32_t AllocationTable::chooseDataRange() {
    constexpr std::uint32_t kLooks = 4;
    const auto count = static_cast<std::uint32_t>(ranges_.size());
    for (std::uint32_t i = 0; i < std::min(kLooks, count - 1); ++i) {
        const std::uint32_t index = (header_.transaction * kLooks + i) % (count - 1);
        if (freeIn(index) > metadataEnd(index) + perSector_ / 16) {
            return index;
        }
    }
    return count - 1;
}

std::uint32_t AllocationTable::allocateData(std::uint32_t previous) {
    loadDifat();
    if (ranges_.empty()) {
        addRange();
    }
    if (previous == kEndOfChain) {
        previous = dataHint_ != kNone ? dataHint_ : chooseDataRange() * perSector_;
    }
    const std::uint32_t index =
        std::min(previous / perSector_, static_cast<std::uint32_t>(ranges_.size() - 1));
    std::uint32_t found = findFreeForData(index, previous % perSector_);
    if (found == kNone) {
        found = findFreeForData(static_cast<std::uint32_t>(ranges_.size() - 1), 0);
    }
    for (; found == kNone && !canGrow() && scannedTo_ < ranges_.size(); ++scannedTo_) {
        found = findFreeForData(scannedTo_, 0);
        if (found != kNone) {
            break;
        }
    }
    while (found == kNone) {
        addRange();
        found = findFreeForData(static_cast<std::uint32_t>(ranges_.size() - 1), 0);
    }
    dataHint_ = found;
    return take(found);
}

// As findFree, but leaves the sectors before metadataEnd() and a few more to the tables.
std::uint32_t AllocationTable::findFreeForData(std::uint32_t index, std::uint32_t from) {
    const std::uint32_t first = index * perSector_ + metadataEnd(index);
    const std::uint32_t reserve = kept(Purpose::Growth);
    std::uint32_t found = findFree(index, std::max(from, metadataEnd(index)), reserve);
    if (found != kNone && found < first) { // the search has wrapped
        found = findFree(index, metadataEnd(index), reserve);
    }
    return found != kNone && found < first ? kNone : found;
}

bool AllocationTable::isForChains(std::uint32_t index) {
    return index >= kFirstChainRange && (index - kFirstChainRange) % kChainRangeStep == 0;
}

// So many of a range's first sectors are kept for directory, mini stream and mini FAT: see
// kFirstChainRange. At the format's end everything is used.
std::uint32_t AllocationTable::metadataEnd(std::uint32_t index) const {
    if (index == 0 || !canGrow()) {
        return 0;
    }
    if (index < kFirstChainRange) {
        return perSector_ / 8;
    }
    return isForChains(index) ? perSector_ : 0;
}

} // namespace compound
