#include "compound/allocation_table.h"

#include <algorithm>
#include <string>

namespace compound {

using namespace format;

namespace {

constexpr std::uint32_t kNone = kFreeSector; // no sector
constexpr std::uint32_t kTailBeforeLock = 64;

} // namespace

AllocationTable::AllocationTable(SectorFile& file, Header& header)
    : file_(file), header_(header), perSector_(file.sectorSize() / 4) {}

// --- reading ------------------------------------------------------------------------------------

void AllocationTable::loadDifat() {
    if (difatLoaded_) {
        return;
    }
    fatSectors_.clear();
    difatSectors_.clear();
    bool ended = false;
    const auto take = [&](std::uint32_t sector) {
        if (sector == kFreeSector || sector == kEndOfChain) {
            ended = true;
        }
        if (ended) {
            return;
        }
        if (sector < file_.count()) {
            fatSectors_.push_back(sector);
        } else if (fatSectors_.size() < header_.fatSectors) {
            file_.throwDamaged("FAT sector " + std::to_string(fatSectors_.size()) +
                               " lies outside the file");
        } else {
            ended = true;
        }
    };
    for (const std::uint32_t sector : header_.difat) {
        take(sector);
    }
    std::vector<std::byte> bytes(file_.sectorSize());
    // Some writers end the chain with "free" instead of "end of chain".
    for (std::uint32_t at = header_.firstDifat; at != kEndOfChain && at != kFreeSector;) {
        if (difatSectors_.size() >= file_.count() || fatSectors_.size() > file_.count()) {
            file_.throwDamaged("the DIFAT is longer than the file");
        }
        file_.read(at, bytes);
        difatSectors_.push_back(at);
        for (std::uint32_t i = 0; i + 1 < perSector_; ++i) {
            take(read32(bytes.data() + std::size_t{4} * i));
        }
        at = read32(bytes.data() + std::size_t{4} * (perSector_ - 1));
    }
    ranges_.resize(fatSectors_.size());
    tables_.clear();
    for (const std::vector<std::uint32_t>* sectors : {&fatSectors_, &difatSectors_}) {
        for (const std::uint32_t sector : *sectors) {
            tables_.insert(sector);
        }
    }
    difatLoaded_ = true;
}

AllocationTable::Range& AllocationTable::loadFromFile(std::uint32_t index) {
    loadDifat();
    if (index >= ranges_.size()) {
        file_.throwDamaged("sector " + std::to_string(std::uint64_t{index} * perSector_) +
                           " has no FAT sector");
    }
    if (!ranges_[index]) { // loadDifat() may have been asked for the first time
        auto loaded = std::make_unique<Range>();
        loaded->bytes.resize(file_.sectorSize());
        file_.read(fatSectors_[index], loaded->bytes);
        ranges_[index] = std::move(loaded);
        ++loaded_;
    }
    return *ranges_[index];
}

AllocationTable::Range& AllocationTable::touch(std::uint32_t index) {
    Range& range = load(index);
    if (!range.touched) {
        touched_.push_back(index);
        range.touched = true;
    }
    return range;
}

// Its FAT sector is written anew.
AllocationTable::Range& AllocationTable::change(std::uint32_t index) {
    Range& range = touch(index);
    range.dirty = anyDirty_ = true;
    return range;
}

const SectorBits& AllocationTable::freeSectors(std::uint32_t index) {
    Range& range = load(index);
    if (!range.free) {
        SectorBits& free = range.free.emplace();
        for (std::uint32_t i = 0; i < perSector_; ++i) {
            const std::uint32_t sector = index * perSector_ + i;
            if (range.at(i) == kFreeSector && isUsable(sector) && !pending_.contains(sector)) {
                free.insert(i);
            }
        }
    }
    return *range.free;
}

SectorBits AllocationTable::freeAfterCommit(std::uint32_t index) {
    SectorBits free = freeSectors(index);
    const std::uint32_t first = index * perSector_;
    const std::uint32_t end = first + perSector_;
    for (std::uint32_t sector = pending_.next(first, end); sector < end;
         sector = pending_.next(sector + 1, end)) {
        if (entry(sector) == kFreeSector && isUsable(sector)) { // a damaged chain may say otherwise
            free.insert(sector - first);
        }
    }
    return free;
}

std::uint32_t AllocationTable::entry(std::uint32_t sector) {
    return load(sector / perSector_).at(sector % perSector_);
}

std::uint32_t AllocationTable::next(std::uint32_t sector) {
    const std::uint32_t value = entry(sector);
    if (value != kEndOfChain && value > kMaximumSector) {
        file_.throwDamaged("a chain runs into sector " + std::to_string(sector) +
                           ", which is in no chain");
    }
    return value;
}

const std::vector<std::uint32_t>& AllocationTable::fatSectors() {
    loadDifat();
    return fatSectors_;
}

const std::vector<std::uint32_t>& AllocationTable::difatSectors() {
    loadDifat();
    return difatSectors_;
}

// --- taking and freeing -------------------------------------------------------------------------

// All entries change here, and with them what is known to be free. Whether a sector is pending is
// told before it is set free.
void AllocationTable::set(std::uint32_t sector, std::uint32_t value) {
    Range& range = change(sector / perSector_);
    const std::uint32_t at = sector % perSector_;
    write32(range.bytes.data() + std::size_t{4} * at, value);
    if (!range.free) {
        return;
    }
    if (value == kFreeSector && isUsable(sector) && !pending_.contains(sector)) {
        range.free->insert(at);
    } else {
        range.free->erase(at);
    }
}

std::uint32_t AllocationTable::take(std::uint32_t sector) {
    provided_ -= std::min<std::uint64_t>(provided_, 1);
    set(sector, kEndOfChain);
    fresh_.insert(sector);
    markRangeLock(std::uint64_t{sector} + 1);
    return sector;
}

// The range lock is marked before a file of `end` sectors can reach it.
void AllocationTable::markRangeLock(std::uint64_t end) {
    const std::uint32_t lock = rangeLock();
    if (lock != kNone && end > lock - kTailBeforeLock && covers(lock) &&
        entry(lock) == kFreeSector) {
        set(lock, kEndOfChain);
    }
}

void AllocationTable::throwFull() const {
    if (insideLimit_ != kMaximumSector) {
        throw Error(ErrorCode::NoSpace, file_.disk().path(), "the disk is full");
    }
    throw Error(ErrorCode::TooLarge, file_.disk().path(),
                "the file has reached the greatest size of its format");
}

void AllocationTable::addRange() {
    loadDifat();
    const std::uint64_t first = std::uint64_t{ranges_.size()} * perSector_;
    if (first >= limit()) {
        throwFull();
    }
    auto range = std::make_unique<Range>();
    range->bytes.assign(file_.sectorSize(), std::byte{0xFF}); // all free
    range->moved = true;
    ranges_.push_back(std::move(range));
    ++loaded_;
    const auto index = static_cast<std::uint32_t>(ranges_.size() - 1);
    try {
        change(index);
        fatSectors_.push_back(takePlaced(findFree(index, 0, 0)));
    } catch (...) {
        dropLastRange();
        throw;
    }
    markTable(fatSectors_.back(), kFatSector);
    touchDifat(static_cast<std::uint32_t>(fatSectors_.size() - 1));
}

void AllocationTable::dropLastRange() {
    std::erase(touched_, static_cast<std::uint32_t>(ranges_.size() - 1));
    ranges_.pop_back();
}

bool AllocationTable::canGrow() const {
    return std::uint64_t{ranges_.size()} * perSector_ < limit();
}

bool AllocationTable::stayInside() {
    if (insideLimit_ != kMaximumSector) {
        return false;
    }
    setInsideLimit(file_.count());
    return true;
}

void AllocationTable::setInsideLimit(std::uint32_t limit) {
    if (limit == insideLimit_) {
        return;
    }
    insideLimit_ = limit;
    scannedTo_ = 0;
    provided_ = 0;
    for (const std::unique_ptr<Range>& range : ranges_) {
        if (range) {
            range->free.reset(); // others may be taken now
        }
    }
}

void AllocationTable::link(std::uint32_t sector, std::uint32_t next) {
    set(sector, next);
}

void AllocationTable::release(std::uint32_t sector) {
    Range& range = load(sector / perSector_);
    if (fresh_.erase(sector)) {
        scannedTo_ = std::min(scannedTo_, sector / perSector_);
    } else {
        range.pending += pending_.contains(sector) ? 0U : 1U;
        pending_.insert(sector);
    }
    set(sector, kFreeSector);
}

void AllocationTable::markTable(std::uint32_t sector, std::uint32_t as) {
    set(sector, as);
    tables_.insert(sector);
}

void AllocationTable::releaseTable(std::uint32_t sector) {
    tables_.erase(sector);
    release(sector);
}

void AllocationTable::releaseChain(std::uint32_t first) {
    // No chain goes on for ever: what was released lies in no chain, and next() says so.
    for (std::uint32_t at = first; at != kEndOfChain;) {
        const std::uint32_t following = next(at);
        release(at);
        at = following;
    }
}

// --- writing ------------------------------------------------------------------------------------

void AllocationTable::touchDifat(std::uint32_t fatIndex) {
    difatTouched_ = std::max(difatTouched_, fatIndex + 1);
}

void AllocationTable::mark(std::uint32_t sector, std::uint32_t as) {
    const std::uint32_t found = entry(sector);
    if (found == as) {
        return;
    }
    if (found <= kMaximumSector || found == kEndOfChain) {
        file_.throwDamaged("a chain runs through sector " + std::to_string(sector) +
                           ", which belongs to the FAT");
    }
    set(sector, as);
}

void AllocationTable::makeSound() {
    loadDifat();
    for (const std::uint32_t sector : fatSectors_) {
        mark(sector, kFatSector);
    }
    for (const std::uint32_t sector : difatSectors_) {
        mark(sector, kDifatSector);
    }
    difatTouched_ = static_cast<std::uint32_t>(fatSectors_.size());
    if (isMarkedLock(rangeLock())) {
        for (std::uint32_t sector = 0; covers(sector); ++sector) {
            if (entry(sector) == rangeLock()) {
                throwLockUsed();
            }
        }
    }
}

void AllocationTable::throwLockUsed() const {
    file_.throwDamaged("a chain ends in the sector of the range lock, which no file may use");
}

// Gives every changed FAT sector of the first `count` ranges a new place, or those only that lie in
// another range than their own; true when that changed anything.
bool AllocationTable::moveFatSectors(std::size_t count, bool onlyAstray) {
    bool any = false;
    for (std::size_t i = 0; i < touched_.size(); ++i) { // moving one may touch others
        const std::uint32_t index = touched_[i];
        const bool isAstray = fatSectors_[index] / perSector_ != index;
        if (index >= count || !ranges_[index]->dirty || ranges_[index]->moved ||
            (onlyAstray && !isAstray)) {
            continue;
        }
        any = ranges_[index]->moved = true;
        const std::uint32_t place = allocate(index * perSector_, Purpose::Fat);
        markTable(place, kFatSector);
        releaseTable(fatSectors_[index]);
        fatSectors_[index] = place;
        touchDifat(index);
    }
    return any;
}

// Gives the DIFAT sectors up to the last changed one new places; true when that changed anything.
bool AllocationTable::moveDifat() {
    const auto perDifat = perSector_ - 1;
    const auto sectorsFor = [&](std::size_t fatSectors) {
        return fatSectors <= kHeaderDifatEntries
                   ? std::size_t{0}
                   : (fatSectors - kHeaderDifatEntries + perDifat - 1) / perDifat;
    };
    bool any = false;
    const std::size_t changed =
        sectorsFor(std::min<std::size_t>(difatTouched_, fatSectors_.size()));
    for (; difatMoved_ < changed; ++difatMoved_, any = true) {
        const bool isNew = difatMoved_ >= difatSectors_.size();
        const std::uint32_t place = allocate(0, Purpose::Chain);
        markTable(place, kDifatSector);
        if (isNew) {
            difatSectors_.push_back(place);
        } else {
            releaseTable(difatSectors_[difatMoved_]);
            difatSectors_[difatMoved_] = place;
        }
    }
    while (difatSectors_.size() > sectorsFor(fatSectors_.size())) {
        releaseTable(difatSectors_.back()); // a foreign file kept more than it needs
        difatSectors_.pop_back();
        any = true;
    }
    difatMoved_ = std::min(difatMoved_, difatSectors_.size());
    return any;
}

std::vector<std::byte> AllocationTable::difatSector(std::size_t index) const {
    std::vector<std::byte> bytes(file_.sectorSize());
    const std::uint32_t perDifat = perSector_ - 1;
    for (std::uint32_t i = 0; i < perDifat; ++i) {
        const std::size_t fat = kHeaderDifatEntries + index * perDifat + i;
        write32(bytes.data() + std::size_t{4} * i,
                fat < fatSectors_.size() ? fatSectors_[fat] : kFreeSector);
    }
    write32(bytes.data() + std::size_t{4} * perDifat,
            index + 1 < difatSectors_.size() ? difatSectors_[index + 1] : kEndOfChain);
    return bytes;
}

// Whether a range holds nothing but its own FAT sector, if that.
bool AllocationTable::isEmpty(std::uint32_t index) {
    const Range& range = load(index);
    const std::uint32_t own = fatSectors_[index];
    for (std::uint32_t at = 0; at < perSector_; ++at) {
        const std::uint32_t sector = index * perSector_ + at;
        const bool isUsed = range.at(at) != kFreeSector && !isMarkedLock(sector);
        if ((isUsed || tables_.contains(sector)) && sector != own) {
            return false;
        }
    }
    return own / perSector_ <= index; // or it is another program's arrangement
}

// Lets go of the last FAT sectors when the sectors that they describe are all free, so that the
// file can be cut. What changes in the tables gets its places first: the last sectors that may be
// taken before the commit can be those that go, and a range that comes back has none to take, since
// the committed state uses what has just left it.
void AllocationTable::dropEmptyRanges(std::uint64_t reserve) {
    std::size_t kept = ranges_.size();
    while (kept > 0 && ranges_[kept - 1] && isEmpty(static_cast<std::uint32_t>(kept - 1))) {
        --kept;
    }
    while (!ranges_.empty() && ranges_.back()) {
        const auto index = static_cast<std::uint32_t>(ranges_.size() - 1);
        const std::uint32_t own = fatSectors_[index];
        if (!isEmpty(index) || missing(reserve, index * perSector_, Free::AfterCommit) > 0) {
            return;
        }
        touchDifat(index);
        change(own / perSector_);
        if (moveFatSectors(kept, false) || moveDifat()) {
            continue; // they may lie in this range now
        }
        releaseTable(own);
        fatSectors_.pop_back();
        dropLastRange();
        touchDifat(index == 0 ? 0 : index - 1);
        if (index > 0) {
            load(index - 1); // looked at next
        }
    }
}

void AllocationTable::writeOut(std::uint64_t reserve, SectorWrites& writes) {
    if (leavesHome()) {
        moveFatSectors(ranges_.size(), true); // they may be all that keeps a range at the end
    }
    dropEmptyRanges(reserve);
    // Moving one sector changes entries, which may lie in a FAT sector not yet moved; each sector
    // moves once, so this ends.
    for (bool again = true; again;) {
        again = moveFatSectors(ranges_.size(), false);
        again = moveDifat() || again;
    }
    for (const std::uint32_t index : touched_) {
        if (ranges_[index]->dirty) {
            writes.add(fatSectors_[index], std::span<const std::byte>(ranges_[index]->bytes));
        }
    }
    for (std::size_t index = 0; index < difatMoved_; ++index) {
        writes.add(difatSectors_[index], difatSector(index));
    }
    header_.fatSectors = static_cast<std::uint32_t>(fatSectors_.size());
    header_.difatSectors = static_cast<std::uint32_t>(difatSectors_.size());
    header_.firstDifat = difatSectors_.empty() ? kEndOfChain : difatSectors_.front();
    for (std::size_t i = 0; i < kHeaderDifatEntries; ++i) {
        header_.difat[i] = i < fatSectors_.size() ? fatSectors_[i] : kFreeSector;
    }
}

void AllocationTable::committed() {
    for (const std::uint32_t index : touched_) {
        Range& range = *ranges_[index];
        if (range.free) {
            range.free = freeAfterCommit(index);
        }
        range.pending = 0;
        range.touched = range.dirty = range.moved = false;
        range.next.reset();
    }
    touched_.clear();
    pending_.clear(); // counted above
    fresh_.clear();
    difatTouched_ = 0;
    difatMoved_ = 0;
    anyDirty_ = false;
    dataHint_ = kNone;
    looked_ = 0;
    home_.reset();
    runStart_ = runEnd_ = 0;
    leftEnd_ = lastGaps_ = gapAt_ = 0;
    leftPart_ = {};
    countsAll_ = false;
    scannedTo_ = 0;
    provided_ = 0;
    promised_ = 0;
    step_ = 0;
    setInsideLimit(kMaximumSector);
}

std::uint32_t AllocationTable::usedEnd() {
    loadDifat();
    // Another program may have left them unmarked.
    std::uint32_t end = 0;
    for (const std::vector<std::uint32_t>* sectors : {&fatSectors_, &difatSectors_}) {
        for (const std::uint32_t sector : *sectors) {
            end = std::max(end, sector + 1);
        }
    }
    for (std::size_t index = ranges_.size(); index-- > 0;) {
        const Range& range = load(static_cast<std::uint32_t>(index));
        for (std::uint32_t at = perSector_; at-- > 0;) {
            const std::uint32_t sector = static_cast<std::uint32_t>(index) * perSector_ + at;
            if (sector < end || (range.at(at) != kFreeSector && !isMarkedLock(sector))) {
                return std::max(end, sector + 1);
            }
        }
    }
    return end;
}

} // namespace compound
