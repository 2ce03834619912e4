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

} // namespace

struct ReadCache::Entry {
    FileIdentity identity;
    std::unique_ptr<FileState> state;
    std::size_t bytes;
};

ReadCache::ReadCache(std::size_t mostBytes) : mostBytes_(mostBytes) {}
ReadCache::~ReadCache() = default;

std::unique_ptr<FileState> ReadCache::take(const FileIdentity& identity, const Header& header) {
    const std::lock_guard lock(mutex_);
    std::unique_ptr<FileState> state;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        if (!isSameFile(entry->identity, identity)) {
            ++entry;
            continue;
        }
        if (entry->identity.isSameStateAs(identity) && entry->state->header() == header) {
            state = std::move(entry->state);
        }
        entry = entries_.erase(entry);
    }
    return state;
}

void ReadCache::keep(const FileIdentity& identity, std::unique_ptr<FileState> state) {
    if (!identity.settled) {
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
    const auto found =
        std::find_if(committed_.begin(), committed_.end(), [&](const CommittedFile& file) {
            return file.identity.isSameStateAs(identity) && file.header == header;
        });
    return found == committed_.end() ? std::nullopt : std::optional(*found);
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
