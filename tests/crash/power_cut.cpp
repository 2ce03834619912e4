#include "crash/power_cut.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace crash {
namespace {

constexpr std::uint64_t kSector = 512;

// Which of the first `count` events are safe: found backwards, from the syncs that follow them.
std::vector<bool> safeEvents(const std::vector<Event>& events, std::size_t count) {
    std::vector<bool> safe(count, false);
    std::set<FileId> syncedFiles;
    std::set<std::filesystem::path> syncedFolders;
    for (std::size_t at = count; at-- > 0;) {
        const Event& event = events[at];
        switch (event.kind) {
        case EventKind::SyncFile:
            syncedFiles.insert(event.file);
            break;
        case EventKind::SyncFolder:
            syncedFolders.insert(event.from);
            break;
        case EventKind::Write:
        case EventKind::Truncate:
            safe[at] = syncedFiles.contains(event.file);
            break;
        case EventKind::Create:
        case EventKind::Rename:
        case EventKind::Remove:
            safe[at] = syncedFolders.contains(event.from.parent_path());
            break;
        case EventKind::Trash:
            safe[at] = true;
            break;
        }
    }
    return safe;
}

void applyWrite(std::vector<std::byte>& content, const Event& event, Fate fate,
                const ChooseSector& sectorReached) {
    const std::uint64_t end = event.offset + event.bytes.size();
    if (content.size() < end) {
        content.resize(static_cast<std::size_t>(end));
    }
    for (std::uint64_t at = event.offset; at < end;) {
        const std::uint64_t next = std::min(end, (at / kSector + 1) * kSector);
        if (fate == Fate::Reached || sectorReached()) {
            std::copy(event.bytes.begin() + static_cast<std::ptrdiff_t>(at - event.offset),
                      event.bytes.begin() + static_cast<std::ptrdiff_t>(next - event.offset),
                      content.begin() + static_cast<std::ptrdiff_t>(at));
        }
        at = next;
    }
}

class Replay {
  public:
    explicit Replay(const Snapshot& beginning)
        : names_(beginning.names), contents_(beginning.contents) {}

    void apply(const Event& event, Fate fate, const ChooseSector& sectorReached) {
        switch (event.kind) {
        case EventKind::Write:
            applyWrite(contents_[event.file], event, fate, sectorReached);
            break;
        case EventKind::Truncate:
            contents_[event.file].resize(static_cast<std::size_t>(event.offset));
            break;
        case EventKind::Create:
            names_[event.from] = event.file;
            break;
        case EventKind::Rename:
            rename(event);
            break;
        case EventKind::Remove:
            names_.erase(event.from);
            break;
        case EventKind::Trash:
            moveToTrash(event.from);
            break;
        case EventKind::SyncFile:
        case EventKind::SyncFolder:
            break;
        }
    }

    Medium medium() && {
        Medium medium;
        for (const auto& [path, id] : names_) {
            medium.files.emplace(path, contents_[id]);
        }
        for (const auto& [path, id] : trashed_) {
            medium.trashed.emplace(path, contents_[id]);
        }
        return medium;
    }

  private:
    void rename(const Event& event) {
        const auto from = names_.find(event.from);
        if (from == names_.end()) {
            return; // its creation was lost
        }
        names_[event.to] = from->second;
        names_.erase(event.from);
    }

    void moveToTrash(const std::filesystem::path& path) {
        const auto found = names_.find(path);
        if (found == names_.end()) {
            return;
        }
        trashed_[path] = found->second;
        names_.erase(found);
    }

    std::map<std::filesystem::path, FileId> names_;
    std::map<FileId, std::vector<std::byte>> contents_;
    std::map<std::filesystem::path, FileId> trashed_; // under their old names
};

std::vector<std::size_t> inOrder(std::size_t count) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

// The changes of bytes and lengths that are not safe come last, in any order.
std::vector<std::size_t> inAnyOrder(const std::vector<Event>& events, const std::vector<bool>& safe,
                                    std::mt19937& random) {
    std::vector<std::size_t> order = inOrder(safe.size());
    const auto loose = std::stable_partition(order.begin(), order.end(), [&](std::size_t at) {
        const EventKind kind = events[at].kind;
        return safe[at] || (kind != EventKind::Write && kind != EventKind::Truncate);
    });
    std::shuffle(loose, order.end(), random);
    return order;
}

Medium replayed(const RecordingDisk& disk, const std::vector<bool>& safe,
                const std::vector<std::size_t>& order, const ChooseFate& fateOf,
                const ChooseSector& sectorReached) {
    Replay replay(disk.beginning());
    for (const std::size_t at : order) {
        const Fate fate = safe[at] ? Fate::Reached : fateOf(at);
        if (fate != Fate::Lost) {
            replay.apply(disk.events()[at], fate, sectorReached);
        }
    }
    return std::move(replay).medium();
}

} // namespace

Medium cutPower(const RecordingDisk& disk, std::size_t count, const ChooseFate& fateOf,
                const ChooseSector& sectorReached) {
    return replayed(disk, safeEvents(disk.events(), count), inOrder(count), fateOf, sectorReached);
}

Medium cutPower(const RecordingDisk& disk, std::size_t count, std::mt19937& random) {
    const std::vector<bool> safe = safeEvents(disk.events(), count);
    const auto order = random() % 2 == 0 ? inOrder(count) : inAnyOrder(disk.events(), safe, random);
    const std::size_t lost = random() % 101; // percent
    const std::size_t torn = random() % 101; // percent of the rest
    const auto fateOf = [&](std::size_t) {
        if (random() % 100 < lost) {
            return Fate::Lost;
        }
        return random() % 100 < torn ? Fate::Torn : Fate::Reached;
    };
    return replayed(disk, safe, order, fateOf, [&] { return random() % 2 == 0; });
}

} // namespace crash
