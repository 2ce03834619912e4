#include "store/file_turns.h"

#include <utility>

namespace store {

FileTurns::Turn::Turn(FileTurns* turns, std::filesystem::path file)
    : turns_(turns), file_(std::move(file)) {}

FileTurns::Turn::Turn(Turn&& other) noexcept
    : turns_(std::exchange(other.turns_, nullptr)), file_(std::move(other.file_)) {}

FileTurns::Turn& FileTurns::Turn::operator=(Turn&& other) noexcept {
    std::swap(turns_, other.turns_);
    std::swap(file_, other.file_);
    return *this;
}

FileTurns::Turn::~Turn() {
    if (turns_ != nullptr) {
        turns_->end(file_);
    }
}

FileTurns::Turn FileTurns::take(const std::filesystem::path& file) {
    std::unique_lock lock(mutex_);
    const auto me = std::this_thread::get_id();
    const auto mine = holders_.find(file);
    if (mine != holders_.end() && mine->second == me) {
        return {};
    }
    ended_.wait(lock, [&] { return !holders_.contains(file); });
    holders_.emplace(file, me);
    return {this, file};
}

void FileTurns::end(const std::filesystem::path& file) {
    {
        const std::lock_guard lock(mutex_);
        holders_.erase(file);
    }
    ended_.notify_all();
}

} // namespace store
