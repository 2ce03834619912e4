#include "compound/mini_stream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

namespace compound {

using namespace format;

MiniStream::MiniStream(SectorFile& file, Header& header, AllocationTable& table,
                       DirectoryEntries& directory)
    : file_(file),
      header_(header),
      allocation_(table),
      directory_(directory),
      perPage_(file.sectorSize() / 4),
      miniPerPage_(file.sectorSize() / kMiniSectorSize),
      pageShift_(static_cast<unsigned>(std::countr_zero(perPage_))),
      miniShift_(static_cast<unsigned>(std::countr_zero(miniPerPage_))) {}

void MiniStream::load() {
    if (data_) {
        return;
    }
    const std::uint64_t size = directory_.size(DirectoryEntries::kRoot);
    const auto chain = [&](std::uint32_t first, bool isThere, const char* what) {
        return std::make_unique<SectorChain>(
            file_, allocation_, isThere && first != kFreeSector ? first : kEndOfChain, what);
    };
    // Some writers leave the header's count at zero.
    table_ = chain(header_.firstMiniFat, size > 0 || header_.miniFatSectors > 0, "the mini FAT");
    data_ = chain(directory_.start(DirectoryEntries::kRoot), size > 0, "the mini stream");
    // A root entry may claim more than there is; reading finds that out where it matters.
    const std::uint64_t most = std::uint64_t{file_.count()} * miniPerPage_;
    count_ =
        static_cast<std::uint32_t>(std::min((size + kMiniSectorSize - 1) / kMiniSectorSize, most));
    hint_ = count_;
}

void MiniStream::makeSound() {
    load();
    while (count_ > 0 && !table_->has((count_ - 1) / perPage_)) {
        table_->append(std::byte{0xFF});
    }
    header_.miniFatSectors = table_->count();
    header_.firstMiniFat = table_->first();
}

std::uint32_t MiniStream::count() {
    load();
    return count_;
}

std::uint32_t MiniStream::entry(std::uint32_t mini) {
    load();
    return read32(table_->read(mini >> pageShift_) + std::size_t{4} * (mini & (perPage_ - 1)));
}

std::uint32_t MiniStream::next(std::uint32_t mini) {
    const std::uint32_t value = mini < count() ? entry(mini) : kFreeSector;
    if (value != kEndOfChain && value >= count()) {
        file_.throwDamaged("a chain of mini sectors runs out of the mini stream at " +
                           std::to_string(mini));
    }
    return value;
}

void MiniStream::set(std::uint32_t mini, std::uint32_t value) {
    write32(table_->write(mini / perPage_) + std::size_t{4} * (mini % perPage_), value);
}

// The streams of a group of many thousand small pictures are more than should lie in memory at
// once. Nobody holds on to a page of them between two calls.
void MiniStream::boundMemory() {
    constexpr std::size_t kMost = std::size_t{8} << 20U;
    if (data_->memory() > kMost) {
        data_->letGo();
    }
}

void MiniStream::read(std::uint32_t first, std::uint64_t offset, std::span<std::byte> into) {
    load();
    boundMemory();
    std::uint32_t mini = first;
    std::uint64_t skip = offset / kMiniSectorSize;
    std::size_t within = offset % kMiniSectorSize;
    for (std::size_t done = 0; done < into.size();) {
        if (mini >= count()) {
            file_.throwDamaged("a stream of the mini stream ends before its size");
        }
        if (skip > 0) {
            --skip;
        } else {
            const std::byte* const page = data_->read(mini >> miniShift_);
            const std::size_t place = std::size_t{kMiniSectorSize} * (mini & (miniPerPage_ - 1));
            const std::size_t part = std::min(into.size() - done, kMiniSectorSize - within);
            std::memcpy(into.data() + done, page + place + within, part);
            done += part;
            within = 0;
        }
        if (done < into.size()) {
            mini = next(mini);
        }
    }
}

// The last free mini sectors before `end` on one page of the table.
std::uint32_t MiniStream::findFree(std::uint32_t page, std::uint32_t end) {
    const std::byte* const entries = table_->read(page);
    for (std::uint32_t i = 0; i < perPage_ && page * perPage_ + i < end; ++i) {
        if (read32(entries + std::size_t{4} * i) == kFreeSector) {
            return page * perPage_ + i;
        }
    }
    return kFreeSector;
}

// Adds one mini sector at the end, with the pages that it needs.
void MiniStream::grow() {
    while (!table_->has(count_ / perPage_)) {
        table_->append(std::byte{0xFF});
    }
    while (!data_->has(count_ / miniPerPage_)) {
        data_->append(std::byte{0});
    }
    ++count_;
}

// Takes what this transaction has freed, so that a stream of the same length needs no room; then
// looks behind the last one taken, on the table's last page and on a few others; then the mini
// stream grows.
std::uint32_t MiniStream::allocate() {
    constexpr std::uint32_t kLooks = 4;
    load();
    std::uint32_t found = kFreeSector;
    if (!freed_.empty()) {
        found = freed_.back();
        freed_.pop_back();
    } else if (hint_ + 1 < count_ && entry(hint_ + 1) == kFreeSector) {
        found = hint_ + 1;
    }
    const std::uint32_t pages = (count_ + perPage_ - 1) / perPage_;
    if (found == kFreeSector && pages > 0 && !exhausted_) {
        found = findFree(pages - 1, count_);
    }
    for (std::uint32_t look = 0;
         found == kFreeSector && !exhausted_ && look + 1 < pages && look < kLooks; ++look) {
        found = findFree((header_.transaction * kLooks + look) % pages, count_);
    }
    if (found == kFreeSector) {
        exhausted_ = true;
        grow();
        found = count_ - 1;
    }
    hint_ = found;
    set(found, kEndOfChain);
    return found;
}

std::uint32_t MiniStream::store(std::span<const std::byte> bytes) {
    load();
    boundMemory();
    std::uint32_t first = kEndOfChain;
    std::uint32_t previous = kEndOfChain;
    for (std::size_t done = 0; done < bytes.size(); done += kMiniSectorSize) {
        const std::uint32_t mini = allocate();
        if (previous == kEndOfChain) {
            first = mini;
        } else {
            set(previous, mini);
        }
        const std::size_t part = std::min<std::size_t>(bytes.size() - done, kMiniSectorSize);
        std::byte* const at = data_->write(mini / miniPerPage_) +
                              std::size_t{kMiniSectorSize} * (mini % miniPerPage_);
        std::memset(at, 0, kMiniSectorSize);
        std::memcpy(at, bytes.data() + done, part);
        previous = mini;
    }
    return first;
}

void MiniStream::releaseChain(std::uint32_t first) {
    // No chain goes on for ever: what was released lies in no chain, and next() says so.
    for (std::uint32_t mini = first; mini != kEndOfChain;) {
        const std::uint32_t following = next(mini);
        set(mini, kFreeSector);
        freed_.push_back(mini);
        mini = following;
    }
    exhausted_ = false;
}

std::uint64_t MiniStream::sectorsFrom(std::uint32_t end) {
    load();
    return table_->sectorsFrom(end) + data_->sectorsFrom(end);
}

void MiniStream::leave(std::uint32_t end) {
    load();
    table_->leave(end);
    data_->leave(end);
}

void MiniStream::mark(const Stretch& part, SectorBits& pages) const {
    if (data_) {
        table_->mark(part, pages);
        data_->mark(part, pages);
    }
}

void MiniStream::leavePart(const Stretch& part) {
    if (data_) {
        table_->leavePart(part);
        data_->leavePart(part);
    }
}

void MiniStream::writeOut(SectorWrites& writes) {
    if (!data_) {
        return;
    }
    if (data_->hasChanges()) {
        directory_.setContent(DirectoryEntries::kRoot, data_->first(),
                              std::uint64_t{count_} * kMiniSectorSize);
        data_->writeOut(writes);
    }
    if (table_->hasChanges()) {
        header_.firstMiniFat = table_->first();
        header_.miniFatSectors = table_->count();
        table_->writeOut(writes);
    }
}

void MiniStream::committed() {
    if (!data_) {
        return;
    }
    table_->committed();
    data_->committed();
    freed_.clear();
    exhausted_ = false; // the next transaction looks at other pages
}

} // namespace compound
