#include "finding/library_index.h"

#include "compound/error.h"
#include "groups/group_paths.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace finding {
namespace {

using namespace std::chrono_literals;

// As long as one job reads a thumbnail may wait for its worker.
constexpr auto kReadAtOnce = 30ms;
constexpr auto kLockWait = 100ms;
constexpr std::size_t kMostFilesAtOnce = 50;
constexpr std::size_t kMostMatches = 1000; // more than anybody looks through

QString textOf(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

std::vector<NamedGroup> namedGroups(const store::Library& library,
                                    const std::vector<store::GroupEntry>& entries) {
    std::vector<NamedGroup> named;
    const groups::GroupPaths paths = groups::pathsOf(entries);
    for (const store::GroupEntry& group : entries) {
        named.push_back(
            {group.address, textOf(group.name.text), paths.at(group.address.storage.text), {}});
        for (store::PictureEntry& picture : store::listPictures(library, group.address)) {
            named.back().pictures.push_back(
                {std::move(picture.name), std::move(picture.record.type)});
        }
    }
    return named;
}

} // namespace

LibraryIndex::LibraryIndex(QObject* parent) : QObject(parent) {
    connect(&reader_, &app::Job::done, this, &LibraryIndex::takeRead);
    connect(&search_, &app::Job::done, this, [this] {
        emit found(search_.result());
        if (std::exchange(isSearchWanted_, false)) {
            search();
        }
    });
}

void LibraryIndex::start(const store::Library& library) {
    if (library_ == nullptr) {
        library_ = &library;
        try {
            for (store::FileName& file : store::groupFilesAsTheyAre(library)) {
                unread_.push_back(std::move(file));
            }
        } catch (const compound::Error&) {
            library_ = nullptr; // out of reach: the next start tries again
            return;
        }
    }
    for (const std::u16string& file : std::exchange(failed_, {})) {
        unread_.push_back({file});
    }
    readOn();
}

void LibraryIndex::stop() {
    library_ = nullptr;
    reader_.drop();
    findNothing();
}

bool LibraryIndex::isIndexed(const groups::GroupFile& file) const {
    const auto known = states_.find(file.file.text);
    return known != states_.end() && known->second && file.state &&
           known->second->isSameStateAs(*file.state) && known->second->settled;
}

void LibraryIndex::takeChanges(std::span<const store::FileName> files,
                               std::span<const groups::GroupFile> read) {
    if (library_ == nullptr) {
        return;
    }
    std::set<std::u16string> present;
    for (const store::FileName& file : files) {
        present.insert(file.text);
    }
    std::erase_if(failed_, [&](const auto& file) { return !present.contains(file); });
    bool hasChanged = false;
    std::erase_if(states_, [&](const auto& state) {
        const bool isGone = !present.contains(state.first);
        if (isGone) {
            index_.remove({state.first});
            hasChanged = true;
        }
        return isGone;
    });
    for (const groups::GroupFile& file : read) {
        const auto waiting = unread_.begin() + static_cast<std::ptrdiff_t>(inHand_);
        if (!isIndexed(file) && std::find(waiting, unread_.end(), file.file) == unread_.end()) {
            unread_.push_back(file.file);
        }
    }
    if (hasChanged) {
        search();
    }
    readOn();
}

LibraryIndex::FileReading LibraryIndex::readFile(const store::Library& library,
                                                 const store::FileName& file) {
    const groups::GroupFile group = groups::readAsItIs(library, file, store::LockBudget(kLockWait));
    FileReading reading{file, group.state, nullptr};
    if (group.reading.state != store::GroupFileState::Sound) {
        return reading;
    }
    try {
        reading.names =
            std::make_shared<const FileNames>(namedGroups(library, group.reading.groups));
    } catch (const std::exception&) {
        reading.names.reset(); // the next start of a search tries again
    }
    return reading;
}

void LibraryIndex::readOn() {
    if (library_ == nullptr || reader_.isBusy() || unread_.empty()) {
        return;
    }
    inHand_ = std::min(unread_.size(), kMostFilesAtOnce);
    std::vector<store::FileName> files(unread_.begin(),
                                       unread_.begin() + static_cast<std::ptrdiff_t>(inHand_));
    reader_.start([library = *library_, files = std::move(files)] {
        std::vector<FileReading> readings;
        const auto end = std::chrono::steady_clock::now() + kReadAtOnce;
        for (const store::FileName& file : files) {
            readings.push_back(readFile(library, file));
            if (std::chrono::steady_clock::now() >= end) {
                break;
            }
        }
        return readings;
    });
}

void LibraryIndex::takeRead() {
    std::vector<FileReading> readings = std::exchange(reader_.result(), {});
    unread_.erase(unread_.begin(), unread_.begin() + static_cast<std::ptrdiff_t>(readings.size()));
    inHand_ = 0;
    for (FileReading& reading : readings) {
        if (reading.names) {
            states_[reading.file.text] = reading.state;
            index_.put(reading.file, std::move(reading.names));
        } else {
            failed_.insert(reading.file.text);
        }
    }
    search();
    readOn();
    emit progressed();
}

void LibraryIndex::find(const QString& text) {
    wanted_ = text;
    search_.drop();
    search();
}

void LibraryIndex::findNothing() {
    wanted_.clear();
    search_.drop();
    isSearchWanted_ = false;
}

void LibraryIndex::search() {
    if (wanted_.isEmpty()) {
        return;
    }
    if (search_.isBusy()) {
        isSearchWanted_ = true;
        return;
    }
    search_.start(
        [index = index_, words = Words(wanted_)] { return index.find(words, kMostMatches); });
}

} // namespace finding
