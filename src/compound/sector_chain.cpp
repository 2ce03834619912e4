#include "compound/sector_chain.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace compound {

using namespace format;

SectorChain::SectorChain(SectorFile& file, AllocationTable& table, std::uint32_t first,
                         std::string what)
    : file_(file),
      table_(table),
      what_(std::move(what)),
      first_(first),
      complete_(first == kEndOfChain) {}

void SectorChain::walkTo(std::uint32_t index) {
    while (!complete_ && sectors_.size() <= index) {
        const std::uint32_t sector = sectors_.empty() ? first_ : table_.next(sectors_.back());
        if (sector == kEndOfChain) {
            complete_ = true;
            return;
        }
        if (sector >= file_.count() && !table_.isFresh(sector)) {
            file_.throwDamaged(what_ + " runs out of the file");
        }
        if (sectors_.size() >= file_.count()) {
            file_.throwDamaged(what_ + " runs in a ring");
        }
        sectors_.push_back(sector);
    }
}

std::uint32_t SectorChain::count() {
    walkTo(kMaximumSector);
    return static_cast<std::uint32_t>(sectors_.size());
}

const std::vector<std::uint32_t>& SectorChain::sectors() {
    count();
    return sectors_;
}

bool SectorChain::has(std::uint32_t index) {
    walkTo(index);
    return index < sectors_.size();
}

// Pages to read at once: ever more of a chain that stays in memory. What is soon let go again must
// have been worth reading, so there only the next one in order brings more.
std::uint32_t SectorChain::pagesToLoad(std::uint32_t index) const {
    constexpr std::uint32_t kMost = 64;
    if (hasLetGo_) {
        return index == loadedTo_ ? kMost : 1;
    }
    return loads_ < 24 ? 1 : loads_ < 64 ? 16 : kMost;
}

// Reads the page and, once many were asked for, those that lie behind it in one run.
void SectorChain::loadPages(std::uint32_t index) {
    const std::uint32_t wanted = pagesToLoad(index);
    ++loads_;
    const std::uint32_t start = index - index % wanted;
    walkTo(start + wanted - 1);
    const auto isFree = [&](std::uint32_t at) {
        return at < sectors_.size() && (at >= pages_.size() || !pages_[at].bytes);
    };
    std::uint32_t from = index;
    while (from > start && isFree(from - 1) && sectors_[from - 1] + 1 == sectors_[from]) {
        --from;
    }
    std::uint32_t to = index + 1;
    while (to < start + wanted && isFree(to) && sectors_[to - 1] + 1 == sectors_[to]) {
        ++to;
    }
    if (pages_.size() < to) {
        pages_.resize(std::max<std::size_t>(to, sectors_.size()));
    }
    const std::size_t size = file_.sectorSize();
    std::byte* const block = newBlock(to - from);
    file_.read(sectors_[from], {block, size * (to - from)});
    for (std::uint32_t at = from; at < to; ++at) {
        pages_[at].bytes = block + size * (at - from);
    }
    loadedTo_ = to;
}

std::byte* SectorChain::newBlock(std::size_t pages) {
    // Filled by the caller; clearing it first would cost as much as reading.
    blocks_.push_back(std::unique_ptr<std::byte[]>(new std::byte[pages * file_.sectorSize()]));
    memory_ += pages * file_.sectorSize();
    return blocks_.back().get();
}

const std::byte* SectorChain::load(std::uint32_t index) {
    if (!has(index)) {
        file_.throwDamaged(what_ + " ends before its page " + std::to_string(index));
    }
    loadPages(index);
    return pages_[index].bytes;
}

std::byte* SectorChain::write(std::uint32_t index) {
    read(index);
    markDirty(index);
    if (!table_.isFresh(sectors_[index])) {
        move(index);
    }
    return pages_[index].bytes;
}

void SectorChain::move(std::uint32_t index) {
    walkTo(index + 1);
    const bool last = index + 1 == sectors_.size();
    const std::uint32_t old = sectors_[index];
    const std::uint32_t moved = table_.allocate(old, AllocationTable::Purpose::Chain);
    table_.link(moved, last ? kEndOfChain : sectors_[index + 1]);
    if (index > 0) {
        table_.link(sectors_[index - 1], moved);
    }
    table_.release(old);
    sectors_[index] = moved;
}

// The sector of a new page. A transaction that adds many takes ever more at a time, so that the
// pages of one chain lie in a row.
std::uint32_t SectorChain::takeForAppending() {
    constexpr std::uint32_t kMost = 16;
    if (kept_.empty()) {
        const std::uint32_t near = sectors_.empty() ? kEndOfChain : sectors_.back();
        const std::uint32_t wanted = table_.canSpare(kMost) ? std::clamp(appended_, 1U, kMost) : 1;
        for (std::uint32_t i = 0; i < wanted; ++i) {
            kept_.push_back(table_.allocate(near, AllocationTable::Purpose::Chain));
        }
        std::sort(kept_.begin(), kept_.end(), std::greater<>());
    }
    ++appended_;
    const std::uint32_t sector = kept_.back();
    kept_.pop_back();
    return sector;
}

std::uint32_t SectorChain::append(std::byte fill) {
    const std::uint32_t index = count();
    const std::uint32_t sector = takeForAppending();
    if (!sectors_.empty()) {
        table_.link(sectors_.back(), sector);
    }
    sectors_.push_back(sector);
    pages_.resize(sectors_.size());
    pages_[index].bytes = newBlock(1);
    std::memset(pages_[index].bytes, std::to_integer<int>(fill), file_.sectorSize());
    markDirty(index);
    return index;
}

void SectorChain::giveBackKept() {
    for (; !kept_.empty(); kept_.pop_back()) {
        table_.release(kept_.back());
    }
    appended_ = 0;
}

std::uint64_t SectorChain::sectorsFrom(std::uint32_t end) {
    giveBackKept();
    count();
    return static_cast<std::uint64_t>(std::count_if(sectors_.begin(), sectors_.end(),
                                                    [&](std::uint32_t at) { return at >= end; }));
}

void SectorChain::leave(std::uint32_t end) {
    count();
    leavePart({end, kMaximumSector});
}

void SectorChain::mark(const Stretch& part, SectorBits& pages) const {
    for (const std::uint32_t sector : sectors_) {
        if (part.contains(sector)) {
            pages.insert(sector - part.begin);
        }
    }
}

void SectorChain::leavePart(const Stretch& part) {
    const std::uint32_t known = walked();
    for (std::uint32_t index = 0; index < known; ++index) {
        if (part.contains(sectors_[index]) && isReadable(index)) {
            markDirty(index);
            move(index);
        }
    }
}

bool SectorChain::isReadable(std::uint32_t index) try {
    read(index);
    return true;
} catch (const Error&) {
    return false;
}

void SectorChain::letGo() {
    SectorWrites writes;
    addDirty(writes);
    writes.writeTo(file_);
    pages_.clear();
    dirty_.clear();
    blocks_.clear();
    memory_ = 0;
    hasLetGo_ = true;
}

void SectorChain::writeOut(SectorWrites& writes) {
    if (!anyDirty_) {
        return;
    }
    giveBackKept();
    addDirty(writes);
    for (const std::uint32_t index : dirty_) {
        pages_[index].dirty = false;
    }
    dirty_.clear();
}

void SectorChain::markDirty(std::uint32_t index) {
    if (!pages_[index].dirty) {
        dirty_.push_back(index);
    }
    pages_[index].dirty = anyDirty_ = true;
}

void SectorChain::addDirty(SectorWrites& writes) {
    for (const std::uint32_t index : dirty_) {
        writes.add(sectors_[index], std::span(pages_[index].bytes, file_.sectorSize()));
    }
}

} // namespace compound
