// The allocation table's room: how many sectors inside the file are free, and how the file is
// lengthened until there are enough.
#include "compound/allocation_table.h"

#include <algorithm>

namespace compound {

using namespace format;

// Free sectors of a range among the file's first `count`, but for one: -1 when there is none, for
// then its FAT sector takes one of another range.
std::int64_t AllocationTable::usableIn(std::uint32_t index, std::uint32_t count, Free which) {
    const Range& range = load(index);
    const std::uint32_t first = index * perSector_;
    std::int64_t free = 0;
    if (std::uint64_t{index + 1} * perSector_ <= count) { // no need to look at each
        free = freeIn(index) + (which == Free::AfterCommit ? range.pending : 0);
    } else if (first < count) {
        free = which == Free::AfterCommit ? freeAfterCommit(index).countBefore(count - first)
                                          : freeSectors(index).countBefore(count - first);
    } else {
        return 0; // it can go
    }
    return free - std::int64_t{kKeptForFat};
}

// The same of several ranges. Which ranges count follows from the file alone, and not from what is
// in memory: what a commit keeps is what check() expects.
std::uint64_t AllocationTable::usable(std::uint64_t wanted, std::uint32_t count, Free which) {
    // At the least; a file of very many elements keeps more than so few can hold.
    constexpr std::uint64_t kCounted = 8;
    loadDifat();
    const std::uint64_t size = ranges_.size();
    const std::uint64_t counted = kCounted + 2 * wanted / perSector_;
    const std::uint64_t first = countsAll_ || !canGrow() || size <= counted ? 0 : size - counted;
    const std::uint32_t atHome = header_.firstDirectory / perSector_;
    std::int64_t found = atHome < first ? usableIn(atHome, count, which) : 0;
    for (std::uint64_t index = first; index < size; ++index) {
        found += usableIn(static_cast<std::uint32_t>(index), count, which);
    }
    return static_cast<std::uint64_t>(std::max<std::int64_t>(found, 0));
}

std::uint64_t AllocationTable::missing(std::uint64_t wanted, std::uint32_t count, Free which) {
    const std::uint64_t found = usable(wanted, count, which);
    return found < wanted ? wanted - found : 0;
}

// Adds `sectors` to the file, and `more` if the disk has room for them. A transaction that stays
// inside the file may use them as well.
void AllocationTable::lengthen(std::uint64_t sectors, std::uint64_t more) {
    const bool staysInside = insideLimit_ != kMaximumSector;
    setInsideLimit(kMaximumSector);
    try {
        lengthenFreely(sectors, more);
    } catch (...) {
        if (staysInside) {
            setInsideLimit(file_.count());
        }
        throw;
    }
    if (staysInside) {
        setInsideLimit(file_.count());
    }
}

void AllocationTable::lengthenFreely(std::uint64_t sectors, std::uint64_t more) {
    std::uint64_t end = file_.count() + sectors;
    for (; end > std::uint64_t{ranges_.size()} * perSector_; ++end) {
        addRange(); // whose FAT sector lies in it
    }
    if (end > limit()) {
        throwFull();
    }
    const std::uint64_t most =
        std::min<std::uint64_t>(std::uint64_t{ranges_.size()} * perSector_, limit());
    const std::uint64_t tried = std::min(end + more, most);
    markRangeLock(tried);
    try {
        file_.extend(static_cast<std::uint32_t>(tried));
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace || tried == end) {
            throw;
        }
        file_.extend(static_cast<std::uint32_t>(end));
    }
}

bool AllocationTable::tryLengthen(std::uint64_t sectors) {
    const std::uint64_t end = file_.count() + sectors;
    if (end > limit() || end > std::uint64_t{ranges_.size()} * perSector_) {
        return false;
    }
    markRangeLock(end);
    try {
        file_.extend(static_cast<std::uint32_t>(end));
        return true;
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace) {
            throw;
        }
        return false;
    }
}

// Many small streams are added in one transaction: what was counted once serves for many of them,
// and the file grows in ever longer steps.
void AllocationTable::provide(std::uint64_t wanted, Free which) {
    constexpr std::uint64_t kLongestStep = 1024;
    const bool isNow = which == Free::Now;
    promised_ = isNow ? wanted : promised_;
    if (isNow && provided_ >= wanted) {
        return;
    }
    for (;;) {
        const std::uint64_t found =
            usable(isNow ? 2 * wanted + step_ : wanted, file_.count(), which);
        if (isNow) {
            provided_ = found;
        }
        if (found >= wanted) {
            return;
        }
        try {
            lengthen(wanted - found, isNow ? step_ : 0);
        } catch (const Error& error) {
            const bool isFull =
                error.code() == ErrorCode::NoSpace || error.code() == ErrorCode::TooLarge;
            if (!isFull || countsAll_) {
                throw;
            }
            countsAll_ = true; // there may be room further to the front
            continue;
        }
        step_ = std::min(kLongestStep, 2 * step_ + 16);
    }
}

void AllocationTable::growAhead(std::uint64_t reserve) {
    constexpr std::uint64_t kMost = std::uint64_t{1} << 20U; // bytes
    const std::uint32_t before = file_.count();
    const std::uint64_t free = surplus(reserve, Look::Few) + pending_.size();
    const std::uint64_t left = allowedSurplus() - std::min(allowedSurplus(), free);
    const std::uint64_t step =
        std::min({left / 2, kMost / file_.sectorSize(), std::uint64_t{before / 8}});
    const std::uint64_t end = std::min<std::uint64_t>(
        {before + step, std::uint64_t{ranges_.size()} * perSector_, limit()});
    if (end <= before || fresh_.size() > allowedSurplus()) {
        return;
    }
    markRangeLock(end);
    try {
        file_.extendByZeros(static_cast<std::uint32_t>(end));
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace) {
            throw;
        }
    }
}

} // namespace compound
