#include "store/file_turns.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace store {

FileTurns::Turn::Turn(Turn&& other) noexcept
    : turns_(std::exchange(other.turns_, nullptr)), place_(other.place_) {}

FileTurns::Turn& FileTurns::Turn::operator=(Turn&& other) noexcept {
    std::swap(turns_, other.turns_);
    std::swap(place_, other.place_);
    return *this;
}

FileTurns::Turn::~Turn() {
    if (turns_ != nullptr) {
        turns_->end(place_);
    }
}

FileTurns::Place FileTurns::find(const std::filesystem::path& file) {
    return std::find_if(holders_.begin(), holders_.end(),
                        [&](const Holder& holder) { return holder.file == file.native(); });
}

FileTurns::Turn FileTurns::take(const std::filesystem::path& file) {
    std::unique_lock lock(mutex_);
    const auto me = std::this_thread::get_id();
    const Place mine = find(file);
    if (mine != holders_.end() && mine->thread == me) {
        return {};
    }
    ended_.wait(lock, [&] { return find(file) == holders_.end(); });
    holders_.push_back({file.native(), me});
    return {this, std::prev(holders_.end())};
}

void FileTurns::end(Place place) {
    {
        const std::lock_guard lock(mutex_);
        holders_.erase(place);
    }
    ended_.notify_all();
}

} // namespace store
