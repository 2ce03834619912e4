#include "compound/read_cache.h"

#include "compound/file_state.h"

#include <algorithm>
#include <utility>

namespace compound {

namespace {

constexpr std::size_t kMostFiles = 8;
constexpr std::size_t kMostBytesTogether = std::size_t{64} << 20U; // of all files
constexpr std::size_t kMostCommitted = 64;

bool isSameFile(const FileIdentity& one, const FileIdentity& other) {
    return one.device == other.device && one.number == other.number;
}

// Times are asked for only where nothing else tells of others' changes.
bool isAsKept(const FileState& state, const FileIdentity& place, DiskFile& file) {
    if (FileWatch* watch = state.watch()) {
        return state.identity()->isSamePlaceAs(place) && watch->isUntouched();
    }
    const std::optional<FileIdentity> now = file.identity();
    return now && state.identity()->isSameStateAs(*now);
}

} // namespace

struct ReadCache::Entry {
    FileIdentity identity;
    std::unique_ptr<FileState> state;
    std::size_t bytes;
};

ReadCache::ReadCache(std::size_t mostBytes) : mostBytes_(mostBytes) {}
ReadCache::~ReadCache() = default;

std::unique_ptr<FileState> ReadCache::take(DiskFile& file, const Header& header) {
    const std::optional<FileIdentity> place = file.place();
    std::unique_ptr<FileState> state = place ? takeOut(*place) : nullptr;
    const bool isStill = state && state->header() == header && isAsKept(*state, *place, file);
    return isStill ? std::move(state) : nullptr;
}

std::unique_ptr<FileState> ReadCache::takeOut(const FileIdentity& place) {
    const std::lock_guard lock(mutex_);
    const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& known) {
        return isSameFile(known.identity, place);
    });
    if (entry == entries_.end()) {
        return nullptr;
    }
    std::unique_ptr<FileState> state = std::move(entry->state);
    entries_.erase(entry);
    return state;
}

void ReadCache::keep(std::unique_ptr<FileState> state) {
    const FileIdentity identity = *state->identity();
    if (!identity.settled && state->watch() == nullptr) {
        return;
    }
    // That the file is settled may be known from our own commit only, and is not to be learnt from
    // the file again for some seconds.
    if (state->memory() > mostBytes_) {
        state->forgetPages();
    }
    const std::size_t bytes = state->memory();
    state->file().takeDisk();
    const std::lock_guard lock(mutex_);
    entries_.remove_if([&](const Entry& entry) { return isSameFile(entry.identity, identity); });
    entries_.push_front({identity, std::move(state), bytes});
    std::size_t together = 0;
    for (const Entry& entry : entries_) {
        together += entry.bytes;
    }
    for (; entries_.size() > kMostFiles || together > kMostBytesTogether; entries_.pop_back()) {
        together -= entries_.back().bytes;
    }
}

std::optional<CommittedFile> ReadCache::recall(const FileIdentity& identity, const Header& header) {
    const std::lock_guard lock(mutex_);
    for (const CommittedFile& file : committed_) {
        if (!isSameFile(file.identity, identity) || file.header != header) {
            continue;
        }
        CommittedFile found = file;
        // Another program may have edited the file in place and left our header as it was.
        if (!file.identity.isSameStateAs(identity)) {
            found.soundStorages.clear();
        }
        return found;
    }
    return std::nullopt;
}

void ReadCache::remember(CommittedFile file) {
    const std::lock_guard lock(mutex_);
    forgetLocked(file.identity);
    committed_.push_front(std::move(file));
    if (committed_.size() > kMostCommitted) {
        committed_.pop_back();
    }
}

void ReadCache::forget(const FileIdentity& identity) {
    const std::lock_guard lock(mutex_);
    forgetLocked(identity);
}

void ReadCache::forgetLocked(const FileIdentity& identity) {
    committed_.remove_if(
        [&](const CommittedFile& file) { return isSameFile(file.identity, identity); });
}

} // namespace compound
