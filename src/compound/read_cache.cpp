#include "compound/read_cache.h"

#include "compound/file_state.h"

#include <utility>

namespace compound {

namespace {

constexpr std::size_t kMostFiles = 8;
constexpr std::size_t kMostBytes = std::size_t{32} << 20U; // of one file's state

} // namespace

struct ReadCache::Entry {
    FileIdentity identity;
    std::unique_ptr<FileState> state;
};

ReadCache::ReadCache() = default;
ReadCache::~ReadCache() = default;

std::unique_ptr<FileState> ReadCache::take(const FileIdentity& identity, const Header& header) {
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        if (!entry->identity.isSameStateAs(identity) || entry->state->header() != header)
            continue;
        std::unique_ptr<FileState> state = std::move(entry->state);
        entries_.erase(entry);
        return state;
    }
    return nullptr;
}

void ReadCache::keep(const FileIdentity& identity, std::unique_ptr<FileState> state) {
    if (!identity.settled || state->memory() > kMostBytes)
        return;
    state->file().takeDisk();
    entries_.push_front({identity, std::move(state)});
    if (entries_.size() > kMostFiles)
        entries_.pop_back();
}

} // namespace compound
