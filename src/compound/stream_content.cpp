#include "compound/stream_content.h"

#include "compound/error.h"

#include <algorithm>
#include <array>
#include <string>

namespace compound {

using namespace format;

// The sectors of a long stream; Damaged unless there are exactly as many as its size needs.
const std::vector<std::uint32_t>& StreamContent::chainOf(EntryId id) {
    if (cachedId_ == id) {
        return cachedChain_;
    }
    cachedId_ = kNoEntry;
    cachedChain_.clear();
    const std::uint64_t size = directory_.size(id);
    const std::uint64_t needed = (size + file_.sectorSize() - 1) / file_.sectorSize();
    if (needed > file_.count()) {
        file_.throwDamaged("a stream claims to be larger than the file");
    }
    for (std::uint32_t at = directory_.start(id); at != kEndOfChain; at = table_.next(at)) {
        if (cachedChain_.size() >= needed || at >= file_.count()) {
            file_.throwDamaged("a stream's chain does not fit its size");
        }
        cachedChain_.push_back(at);
    }
    if (cachedChain_.size() != needed) {
        file_.throwDamaged("a stream's chain is shorter than its size");
    }
    cachedId_ = id;
    return cachedChain_;
}

void StreamContent::readSectors(const std::vector<std::uint32_t>& chain, std::uint64_t offset,
                                std::span<std::byte> into) {
    const std::uint32_t size = file_.sectorSize();
    for (std::size_t done = 0; done < into.size();) {
        const auto index = static_cast<std::size_t>((offset + done) / size);
        const auto within = static_cast<std::uint32_t>((offset + done) % size);
        const std::size_t rest = into.size() - done;
        std::size_t run = 1;
        while (run * size - within < rest && chain[index + run] == chain[index] + run) {
            ++run;
        }
        const std::size_t part = std::min(rest, run * size - within);
        file_.readPart(chain[index], within, into.subspan(done, part));
        done += part;
    }
}

std::size_t StreamContent::read(EntryId id, std::uint64_t offset, std::span<std::byte> into) {
    const auto [start, size] = directory_.content(id);
    if (offset >= size) {
        return 0;
    }
    const auto length =
        static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), size - offset));
    if (isMini(size)) {
        mini_.read(start, offset, into.first(length));
    } else {
        readSectors(chainOf(id), offset, into.first(length));
    }
    return length;
}

base::Bytes StreamContent::readAll(EntryId id) {
    const std::uint64_t size = directory_.size(id);
    if (!isMini(size)) {
        chainOf(id);
    }
    base::Bytes bytes(static_cast<std::size_t>(size));
    read(id, 0, bytes);
    return bytes;
}

void StreamContent::release(EntryId id) {
    const std::uint64_t size = directory_.size(id);
    if (size == 0) {
        return;
    }
    if (isMini(size)) {
        mini_.releaseChain(directory_.start(id));
    } else {
        chainOf(id); // a chain that crosses another one's is found before anything is freed
        table_.releaseChain(directory_.start(id));
    }
    cachedId_ = kNoEntry;
}

void StreamContent::assign(EntryId id, std::span<const std::byte> bytes) {
    release(id);
    cachedId_ = kNoEntry;
    if (isMini(bytes.size())) {
        directory_.setContent(id, mini_.store(bytes), bytes.size());
        return;
    }
    cachedChain_.clear();
    store(bytes, cachedChain_);
    cachedId_ = id;
    directory_.setContent(id, cachedChain_.front(), bytes.size());
}

// Links `count` new sectors behind those of `chain`, which is at its end.
void StreamContent::extendChain(std::vector<std::uint32_t>& chain, std::size_t count) {
    for (; count > 0; --count) {
        const std::uint32_t previous = chain.empty() ? kEndOfChain : chain.back();
        const std::uint32_t sector = table_.allocateData(previous, count);
        if (previous != kEndOfChain) {
            table_.link(previous, sector);
        }
        chain.push_back(sector);
    }
}

// Writes bytes to new sectors behind those of `chain`. Few parts of a large file are looked at for
// free sectors before it grows; when it cannot, on a full disk, all of it is.
void StreamContent::store(std::span<const std::byte> bytes, std::vector<std::uint32_t>& chain) {
    const std::size_t count = (bytes.size() + file_.sectorSize() - 1) / file_.sectorSize();
    const std::size_t before = chain.size();
    try {
        extendChain(chain, count);
        writeSectors(std::span(chain).subspan(before), bytes);
        return;
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace || !table_.stayInside()) {
            throw;
        }
    }
    for (; chain.size() > before; chain.pop_back()) {
        table_.release(chain.back());
    }
    extendChain(chain, count);
    writeSectors(std::span(chain).subspan(before), bytes);
}

void StreamContent::writeSectors(std::span<const std::uint32_t> sectors,
                                 std::span<const std::byte> bytes) {
    const std::uint32_t size = file_.sectorSize();
    for (std::size_t from = 0; from < sectors.size();) {
        std::size_t to = from + 1;
        while (to < sectors.size() && sectors[to] == sectors[to - 1] + 1) {
            ++to;
        }
        const std::size_t end = std::min(to * size, bytes.size());
        const std::vector<std::byte> rest(to * size - end); // of the last sector, zeros
        const std::array<std::span<const std::byte>, 2> parts{
            bytes.subspan(from * size, end - from * size), rest};
        file_.write(sectors[from], std::span(parts).first(rest.empty() ? 1 : 2));
        from = to;
    }
}

void StreamContent::append(EntryId id, std::span<const std::byte> bytes) {
    const std::uint64_t size = directory_.size(id);
    if (bytes.empty()) {
        return;
    }
    if (!isMini(size)) {
        appendSectors(id, bytes);
        return;
    }
    const base::Bytes before = readAll(id);
    std::vector<std::byte> all(before.begin(), before.end());
    all.insert(all.end(), bytes.begin(), bytes.end());
    assign(id, all);
}

// The last sector's used part moves to a new sector together with what comes behind it, unless it
// is full.
void StreamContent::appendSectors(EntryId id, std::span<const std::byte> bytes) {
    const std::uint64_t size = directory_.size(id);
    chainOf(id);
    cachedId_ = kNoEntry; // until the chain is whole again
    const auto used = static_cast<std::size_t>(size % file_.sectorSize());
    std::vector<std::byte> tail(used);
    if (used > 0) {
        readSectors(cachedChain_, size - used, tail);
        const std::uint32_t last = cachedChain_.back();
        cachedChain_.pop_back();
        if (!cachedChain_.empty()) {
            table_.link(cachedChain_.back(), kEndOfChain);
        }
        table_.release(last);
    }
    tail.insert(tail.end(), bytes.begin(), bytes.end());
    store(tail, cachedChain_);
    directory_.setContent(id, cachedChain_.front(), size + bytes.size());
    cachedId_ = id;
}

std::uint64_t StreamContent::sectorsFrom(EntryId id, std::uint32_t end) {
    const std::vector<std::uint32_t>& chain = chainOf(id);
    return static_cast<std::uint64_t>(
        std::count_if(chain.begin(), chain.end(), [&](std::uint32_t at) { return at >= end; }));
}

void StreamContent::leave(EntryId id, std::uint32_t end) {
    const std::vector<std::uint32_t> before = chainOf(id);
    std::vector<std::uint32_t> after = before;
    for (std::uint32_t& sector : after) {
        const std::uint32_t gap = sector < end ? kFreeSector : table_.allocateGap(sector);
        sector = gap == kFreeSector ? sector : gap;
    }
    const bool isCopied = copyMoved(before, after);
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after[i] != before[i]) {
            table_.release(isCopied ? before[i] : after[i]);
        }
    }
    if (!isCopied) {
        return;
    }
    cachedId_ = kNoEntry;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const bool isLast = i + 1 == after.size();
        if (after[i] != before[i] || (!isLast && after[i + 1] != before[i + 1])) {
            table_.link(after[i], isLast ? kEndOfChain : after[i + 1]);
        }
    }
    if (after.front() != before.front()) {
        directory_.setContent(id, after.front(), directory_.size(id));
    }
}

// Copies the sectors of a chain that have got another place, those that lie in a row before and
// after in one go. False when the medium will not have it: that one picture cannot be read must not
// keep others from being changed.
bool StreamContent::copyMoved(const std::vector<std::uint32_t>& before,
                              const std::vector<std::uint32_t>& after) try {
    constexpr std::size_t kMost = 256; // sectors in memory
    std::vector<std::byte> bytes;
    for (std::size_t from = 0, to = 0; from < after.size(); from = to) {
        to = from + 1;
        if (after[from] == before[from]) {
            continue;
        }
        while (to < after.size() && to - from < kMost && before[to] == before[to - 1] + 1 &&
               after[to] == after[to - 1] + 1) {
            ++to;
        }
        bytes.resize((to - from) * file_.sectorSize());
        file_.read(before[from], bytes);
        file_.write(after[from], bytes);
    }
    return true;
} catch (const Error&) {
    return false;
}

} // namespace compound
