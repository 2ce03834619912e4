#include "compound/gap_closing.h"

#include "compound/error.h"

#include <algorithm>

namespace compound {

using namespace format;

bool GapClosing::run(std::uint64_t reserve, std::uint64_t most, AllocationTable::Look look) {
    constexpr std::uint64_t kFew = 16;
    const std::uint64_t surplus = table_.surplus(reserve, look);
    if (surplus <= table_.allowedSurplus()) {
        return false;
    }
    const std::uint32_t used = table_.usedEnd();
    const std::uint64_t behind = file_.count() - std::min(file_.count(), used);
    const auto least = used - static_cast<std::uint32_t>(std::min<std::uint64_t>(used, surplus));
    const std::uint64_t kept = behind + table_.keptAtHome(reserve, least);
    const std::uint64_t length =
        withPlacesForFat(used, std::min(surplus - std::min(surplus, kept), most), surplus);
    if (length <= kFew || length >= used) {
        return true;
    }
    const std::uint32_t end = used - static_cast<std::uint32_t>(length);
    const std::uint32_t place = table_.lowestPlaceForFat(end);
    const bool hasPlace = place < end + length / 4;
    leaveTail(hasPlace ? std::max(end, place + 1) : end);
    return hasPlace;
}

// What moves fills all gaps but for one of each range. A FAT sector before the end that lies in
// another range than its own goes to neither: what it leaves is free for the next transaction only.
// So for these there must be room behind the end, or less moves.
std::uint64_t GapClosing::withPlacesForFat(std::uint32_t used, std::uint64_t length,
                                           std::uint64_t surplus) {
    constexpr std::uint64_t kParts = 16; // so that the ranges are gone through a few times only
    bool hasAsked = false;
    while (length > 0 && length < used) {
        const std::uint64_t homeless =
            table_.homelessBefore(used - static_cast<std::uint32_t>(length));
        const std::uint64_t lacking = length + homeless - std::min(length + homeless, surplus);
        if (lacking == 0 || (!hasAsked && table_.tryLengthen(lacking))) {
            return length;
        }
        hasAsked = true;
        length -= std::min(length, std::max(lacking, length / kParts));
    }
    return length;
}

void GapClosing::leaveTail(std::uint32_t end) {
    const auto tail = tailFrom(end);
    if (!tail) {
        return;
    }
    table_.leave(end);
    for (const EntryId stream : tail->streams) {
        content_.leave(stream, end);
    }
    mini_.leave(end);
    directoryChain_.leave(end);
    hasMoved_ = true;
}

// Nothing when the sectors in use are more, or others, than the chains hold: another program's
// mistake, which is none of a commit's business.
std::optional<GapClosing::Tail> GapClosing::tailFrom(std::uint32_t end) {
    Tail tail{end, {}, 0};
    try {
        addStreams(tail);
        tail.sectors += mini_.sectorsFrom(end) + directoryChain_.sectorsFrom(end);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Damaged) {
            throw;
        }
        return std::nullopt;
    }
    return tail.sectors == table_.inChainsFrom(end) ? std::optional(tail) : std::nullopt;
}

void GapClosing::addStreams(Tail& tail) {
    const std::uint64_t count = directory_.count();
    for (EntryId id = DirectoryEntries::kRoot + 1; id < count; ++id) {
        const auto type = static_cast<EntryType>(
            std::to_integer<std::uint8_t>(directory_.raw(id)[entry::kTypeAt]));
        if (type != EntryType::Stream || directory_.size(id) < kMiniStreamCutoff) {
            continue;
        }
        const std::uint64_t sectors = content_.sectorsFrom(id, tail.end);
        if (sectors > 0) {
            tail.sectors += sectors;
            tail.streams.push_back(id);
        }
    }
}

} // namespace compound
