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
    const SectorBits& free = freeSectors(index);
    const std::uint32_t behind = free.next(from);
    const std::uint32_t found = behind < perSector_ ? behind : free.next(0);
    return found < perSector_ ? index * perSector_ + found : kNone;
}

// Free sectors that the chains find in their home range: see home(). The file keeps about as many
// in any case, for deletions on a full disk.
std::uint32_t AllocationTable::spareForChains() const {
    constexpr std::uint32_t kLeast = 8;
    constexpr std::uint32_t kPart = 128; // of the file
    return std::min(std::max(kLeast, file_.count() / kPart), perSector_ / 4 * 3);
}

// Free sectors of the home that FAT sectors leave to the chains.
std::uint32_t AllocationTable::spareForFat() const {
    return spareForChains() / 4;
}

// Free sectors of a range that data leave alone. At the format's end, and on a full disk, all but
// the FAT sector's are taken.
std::uint32_t AllocationTable::keptFromData(std::uint32_t index) {
    return canGrow() && index == home() ? spareForChains() : kKeptForFat;
}

// The range in which directory, mini stream and mini FAT find new places. It lasts for many
// transactions, so that a change to these chains changes few FAT sectors and a walk through them
// loads few. What tells it is the place of the directory's first page, which nearly every change
// writes anew.
std::uint32_t AllocationTable::home() {
    if (!home_) {
        const bool isThere = header_.firstDirectory < kMaximumSector;
        home_ = isThere ? header_.firstDirectory / perSector_ : 0;
    }
    return *home_;
}

// The range with the most room for the chains among those in memory, in which they lie, and the
// last ones, in which the reserve is; none with less than `enough` free sectors.
std::optional<std::uint32_t> AllocationTable::roomiestRange(std::uint32_t enough) {
    constexpr std::size_t kLast = 8;
    const std::uint32_t spare = std::max(spareForChains(), enough);
    std::uint32_t most = 0;
    std::optional<std::uint32_t> best;
    for (std::uint32_t index = 0; index < ranges_.size(); ++index) {
        if (!ranges_[index] && index + kLast < ranges_.size()) {
            continue;
        }
        const std::uint32_t free = std::min(freeInside(index), spare);
        if (free >= enough && free > most) {
            most = free;
            best = index;
        }
    }
    return best;
}

// Where the chains go on when their home is full: in another range that has room, or in a run at
// the file's end.
void AllocationTable::moveHome() {
    const std::uint32_t enough = std::max<std::uint32_t>(spareForChains() / 8, 8);
    if (const auto best = roomiestRange(enough)) {
        beginRunIn(*best);
    } else if (canGrow()) {
        beginRunAtEnd(enough);
    } else {
        home_ = static_cast<std::uint32_t>(ranges_.size() - 1);
    }
}

// Those of a range's free sectors that may be taken without lengthening the file.
std::uint32_t AllocationTable::freeInside(std::uint32_t index) {
    const std::uint64_t end = std::uint64_t{index + 1} * perSector_;
    const std::uint64_t outside = end - std::min<std::uint64_t>(end, file_.count());
    return freeIn(index) -
           static_cast<std::uint32_t>(std::min<std::uint64_t>(freeIn(index), outside));
}

// A run of the range is for the chains: data leave it out.
void AllocationTable::beginRunIn(std::uint32_t index) {
    const Run run = runIn(index, spareForChains());
    runStart_ = index * perSector_ + run.start;
    runEnd_ = runStart_ + run.length;
    touch(index).next = run.start;
    home_ = index;
}

// Lengthens the file by a run for the chains, which this transaction's data leave out.
void AllocationTable::beginRunAtEnd(std::uint32_t enough) {
    const auto endOfRanges = [&] { return std::uint64_t{ranges_.size()} * perSector_; };
    if (file_.count() + std::uint64_t{enough} > endOfRanges()) {
        addRange();
    }
    const auto last = static_cast<std::uint32_t>(ranges_.size() - 1);
    const std::uint64_t end = std::min<std::uint64_t>(endOfRanges(), limit());
    std::uint32_t start = std::max(file_.count(), last * perSector_);
    if (start >= end) { // a crash has left a long tail, and the range is new
        start = fatSectors_[last] + 1;
    }
    const auto length =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(spareForChains(), end - start));
    markRangeLock(std::uint64_t{start} + length);
    file_.extendByZeros(start + length);
    runStart_ = start;
    runEnd_ = start + length;
    touch(last).next = start % perSector_;
    home_ = last;
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
    const bool isFat = purpose == Purpose::Fat;
    const std::uint32_t first = leavesHome() ? (isFat ? near / perSector_ : 0) : home();
    std::uint32_t found = findFreeIn(first, isFat && first == home() ? spareForFat() : kKeptForFat);
    if (found == kNone && isFat) {
        found = findPlaceForFat(near / perSector_);
    } else if (found == kNone && !freesMuch()) {
        moveHome();
        found = findFreeIn(home(), kKeptForFat);
    }
    for (std::uint32_t index = 0; found == kNone && index < ranges_.size(); ++index) {
        // Only what is in memory anyway, and the last one, in which the file can grow.
        if (ranges_[index] || index + 1 == ranges_.size() || !canGrow()) {
            found = findFreeInRun(index, kKeptForFat);
        }
    }
    if (found == kNone && !canGrow()) {
        found = findKept(); // rather than that a deletion fails
    }
    if (found == kNone) {
        addRange();
        found = findFree(static_cast<std::uint32_t>(ranges_.size() - 1), 0, kKeptForFat);
    }
    if (found == kNone) { // the format's last sectors
        throwFull();
    }
    return takePlaced(found);
}

// A place for a range's FAT sector in the range itself or in the home. The range's last free
// sector is for that only if the commit leaves another one there.
std::uint32_t AllocationTable::findPlaceForFat(std::uint32_t index) {
    const bool leavesOne = fatSectors_[index] / perSector_ == index || load(index).pending > 0;
    const std::uint32_t found = findFreeIn(index, leavesOne ? 0 : kKeptForFat);
    return found != kNone || leavesHome() ? found : findFreeIn(home(), kKeptForFat);
}

// What a range keeps for its FAT sector, which has its new place already: taking it changes no more
// FAT sectors. Of a range in which the commit leaves another one, if there is any.
std::uint32_t AllocationTable::findKept() {
    std::uint32_t found = kNone;
    for (const std::uint32_t index : touched_) {
        const Range& range = *ranges_[index];
        if (!range.moved || freeIn(index) == 0) {
            continue;
        }
        found = findFree(index, 0, 0);
        if (range.pending > 0) {
            break;
        }
    }
    return found;
}

// A transaction that gives back a good deal: what it writes goes as far to the front as it can, so
// that the file can be cut.
bool AllocationTable::freesMuch() const {
    return leftEnd_ > 0 || pending_.size() > fresh_.size() + perSector_ / 16;
}

bool AllocationTable::leavesHome() {
    return leftEnd_ > 0 ? !liesBefore(home(), leftEnd_) : freesMuch();
}

std::uint32_t AllocationTable::findFreeIn(std::uint32_t index, std::uint32_t kept) {
    return index < ranges_.size() ? findFreeInRun(index, kept) : kNone;
}

bool AllocationTable::isFreeInside(std::uint32_t index, std::uint32_t at) {
    return at < insideOf(index) && freeSectors(index).contains(at);
}

// A run of `enough` free sectors of the range inside the file, or the longest one.
AllocationTable::Run AllocationTable::runIn(std::uint32_t index, std::uint32_t enough) {
    return freeSectors(index).runBefore(insideOf(index), enough);
}

// A free sector of the range, kNone when no more than `reserve` are left. The sectors that one
// transaction takes lie in a row where they can, so that they are written in one go.
std::uint32_t AllocationTable::findFreeInRun(std::uint32_t index, std::uint32_t reserve) {
    if (freeIn(index) <= reserve) {
        return kNone;
    }
    std::optional<std::uint32_t>& next = touch(index).next;
    if (!next) {
        next = freesMuch() ? 0 : runIn(index, kSmallChange).start;
    }
    const std::uint32_t first = index * perSector_;
    const SectorBits& free = freeSectors(index);
    const auto find = [&](std::uint32_t from, std::uint32_t end) {
        std::uint32_t at = free.next(from);
        while (at < end && leftPart_.contains(first + at)) {
            at = free.next(at + 1);
        }
        return at < end ? at : kNone;
    };
    const std::uint32_t inside = insideOf(index);
    const std::uint32_t behind = find(*next, inside);
    const std::uint32_t found = behind != kNone ? behind : find(0, std::min(*next, inside));
    if (found == kNone) {
        return findFree(index, 0, reserve); // behind the file's end, or in the part to be left
    }
    next = found + 1;
    return first + found;
}

// As take(), for what is written at the commit: that must not fail for want of space then.
std::uint32_t AllocationTable::takePlaced(std::uint32_t sector) {
    file_.extend(sector + 1);
    return take(sector);
}

// Where `wanted` sectors of data go: into a range that has room for a good part of them, among a
// few that are looked at, others in each transaction; otherwise to the last one. Small remains are
// left alone: one picture that lies in many ranges costs as many FAT sectors.
std::uint32_t AllocationTable::choosePlaceForData(std::size_t wanted) {
    constexpr std::uint32_t kLooks = 8;
    constexpr std::size_t kEnough = 8;
    const auto last = static_cast<std::uint32_t>(ranges_.size() - 1);
    const auto enough = static_cast<std::uint32_t>(std::min(wanted, kEnough));
    for (std::uint32_t looks = 0; looks < kLooks && looked_ < last; ++looks) {
        const std::uint32_t index = (header_.transaction * kLooks + looked_++) % last;
        if (freeIn(index) >= keptFromData(index) + enough) {
            return index * perSector_ + runIn(index, static_cast<std::uint32_t>(wanted)).start;
        }
    }
    return last * perSector_;
}

std::uint32_t AllocationTable::allocateData(std::uint32_t previous, std::size_t wanted) {
    loadDifat();
    if (ranges_.empty()) {
        addRange();
    }
    if (previous == kEndOfChain) {
        previous = dataHint_ != kNone ? dataHint_ : choosePlaceForData(wanted);
    }
    std::uint32_t found = findFreeForData(previous);
    if (found == kNone) {
        found = findFreeForData(choosePlaceForData(wanted));
    }
    if (found == kNone) {
        found = findFreeForData(static_cast<std::uint32_t>(ranges_.size() - 1) * perSector_);
    }
    for (; found == kNone && !canGrow() && scannedTo_ < ranges_.size(); ++scannedTo_) {
        found = findFreeForData(scannedTo_ * perSector_);
        if (found != kNone) {
            break;
        }
    }
    while (found == kNone) {
        addRange();
        found = findFreeForData(static_cast<std::uint32_t>(ranges_.size() - 1) * perSector_);
    }
    dataHint_ = found;
    return take(found);
}

// A free sector of the range in which `at` lies, from there on if there is one.
std::uint32_t AllocationTable::findFreeForData(std::uint32_t at) {
    const std::uint32_t index = at / perSector_;
    const std::uint32_t kept = keptFromData(index);
    const auto isInRun = [&](std::uint32_t sector) {
        return sector >= runStart_ && sector < runEnd_ && canGrow();
    };
    std::uint32_t found = findFree(index, at % perSector_, kept);
    if (found != kNone && isInRun(found)) {
        found = findFree(index, runEnd_ % perSector_, kept);
    }
    return found != kNone && isInRun(found) ? kNone : found;
}

} // namespace compound
