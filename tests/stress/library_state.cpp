#include "stress/library_state.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "platform/native_disk.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace stress {
namespace {

using store::GroupAddress;
using store::Library;

constexpr std::uint32_t kPictures = 12; // numbers of each worker, in each group
constexpr std::uint32_t kRenamed = 100; // is added to a picture's number
constexpr std::uint32_t kBatch = 4;
constexpr char16_t kShared[] = u"Shared";

std::u16string numbered(std::u16string_view text, std::uint32_t number) {
    return std::u16string(text) + base::fromUtf8(std::to_string(number));
}

std::string groupKey(std::uint32_t group) {
    return "group " + std::to_string(group) + " picture ";
}

std::string keyOf(std::uint32_t group, std::uint32_t picture) {
    return groupKey(group) + std::to_string(picture);
}

std::string prefixOf(std::uint32_t worker) {
    return "of " + std::to_string(worker) + " ";
}

// The version says all of it: how long it is, on either side of every limit, and each byte.
std::string contentOf(std::uint32_t version) {
    constexpr std::uint32_t kSizes[] = {20, 63, 64, 700, 4095, 4096, 9000, 40000};
    std::string content = std::to_string(version) + ";";
    content.resize(kSizes[version % std::size(kSizes)], static_cast<char>('a' + version % 26));
    return content;
}

std::uint32_t versionOf(const store::StoredPicture& picture) {
    const std::string content(reinterpret_cast<const char*>(picture.bytes.data()),
                              picture.bytes.size());
    const auto version = static_cast<std::uint32_t>(std::strtoul(content.c_str(), nullptr, 10));
    if (content != contentOf(version) || picture.record.type != "BMP" ||
        std::lround(picture.record.width * 15) != std::ssize(content)) {
        throw std::runtime_error(base::toUtf8(picture.name.text) + " is not as it was written");
    }
    return version;
}

store::TwipSize measure(std::span<const std::byte> bytes) {
    return {15, static_cast<double>(bytes.size())};
}

} // namespace

Library libraryIn(const std::filesystem::path& folder) {
    // No lock is held for longer than an operation: who does not get it finds a deadlock.
    return {platform::nativeDisk(), folder, measure, u'.', std::chrono::minutes(5)};
}

void prepare(const Library& library) {
    const GroupAddress top = store::createGroup(library, std::nullopt, {kShared});
    for (std::uint32_t group = 1; group < kSharedGroups; ++group) {
        store::createGroup(library, top, {numbered(u"Group ", group)});
    }
}

Operation Share::choose(const State& state, std::mt19937& random) {
    const auto below = [&](std::uint32_t bound) {
        return static_cast<std::uint32_t>(random() % bound);
    };
    const bool hasFile = state.contains("file");
    Operation operation;
    operation.action = static_cast<Action>(below(static_cast<std::uint32_t>(Action::Look) + 1));
    operation.group = below(kSharedGroups + (hasFile ? 1 : 0));
    const std::uint32_t picture = below(kPictures);
    const bool isRenamed = below(2) == 0;
    operation.picture = picture + (isRenamed ? kRenamed : 0);
    operation.other = picture + (isRenamed ? 0 : kRenamed);
    operation.version = below(1U << 20U);
    const bool isThere = state.contains(keyOf(operation.group, operation.picture));
    switch (operation.action) {
    case Action::RenamePicture:
    case Action::DeletePicture:
        if (!isThere) {
            operation.action = Action::Add;
        } else if (state.contains(keyOf(operation.group, operation.other))) {
            operation.action = Action::DeletePicture;
        }
        break;
    case Action::CreateSubGroup:
    case Action::DeleteSubGroup:
        operation.group = below(kSharedGroups);
        operation.action =
            state.contains("sub-group") ? Action::DeleteSubGroup : Action::CreateSubGroup;
        break;
    case Action::CreateFile:
    case Action::RenameFile:
    case Action::RemoveFile:
        operation.other = hasFile ? 1 - state.at("file") : 0;
        operation.action = !hasFile                                 ? Action::CreateFile
                           : operation.action == Action::RemoveFile ? Action::RemoveFile
                                                                    : Action::RenameFile;
        break;
    default:
        break;
    }
    return operation;
}

void Share::apply(const Operation& operation, State& state) {
    const std::string key = keyOf(operation.group, operation.picture);
    switch (operation.action) {
    case Action::Add:
        state[key] = operation.version;
        break;
    case Action::AddBatch:
        for (std::uint32_t i = 0; i < kBatch; ++i) {
            state[keyOf(operation.group, operation.picture + i)] = operation.version + i;
        }
        break;
    case Action::RenamePicture:
        state[keyOf(operation.group, operation.other)] = state.at(key);
        state.erase(key);
        break;
    case Action::DeletePicture:
        state.erase(key);
        break;
    case Action::CreateSubGroup:
        state["sub-group"] = operation.group;
        break;
    case Action::DeleteSubGroup:
        state.erase("sub-group");
        break;
    case Action::CreateFile:
    case Action::RenameFile:
        state["file"] = operation.other;
        break;
    case Action::RemoveFile:
        std::erase_if(state, [](const auto& entry) {
            return entry.first == "file" || entry.first.starts_with(groupKey(kOwnFile));
        });
        break;
    case Action::Compact:
    case Action::Look:
        break;
    }
}

std::u16string Share::ownFile(std::uint32_t which) const {
    return numbered(which == 0 ? u"First of " : u"Second of ", worker_);
}

std::u16string Share::subGroupName() const {
    return numbered(u"Group of ", worker_);
}

// The worker's own file by whichever of its names it has.
GroupAddress Share::addressOf(std::uint32_t group) const {
    if (group == kOwnFile) {
        const std::u16string first = ownFile(0);
        return store::topLevelAddress(store::groupExists(library_, {first}) ? first : ownFile(1));
    }
    return group == 0 ? store::topLevelAddress(kShared)
                      : GroupAddress{{kShared}, {numbered(u"Sub", group)}};
}

std::filesystem::path Share::source(const Operation& operation, std::uint32_t picture) const {
    std::filesystem::path path = sources_ / (prefixOf(worker_) + std::to_string(picture) + ".bmp");
    std::ofstream(path, std::ios::binary) << contentOf(operation.version + picture);
    return path;
}

void Share::run(const Operation& operation) const {
    const GroupAddress group = addressOf(operation.group);
    const std::u16string prefix = base::fromUtf8(prefixOf(worker_));
    const auto named = [&](std::uint32_t number) {
        return store::PictureName{numbered(prefix, number)};
    };
    switch (operation.action) {
    case Action::Add:
        store::addPicture(library_, group, named(operation.picture), source(operation, 0));
        break;
    case Action::AddBatch: {
        store::PictureBatch batch(library_, group);
        for (std::uint32_t i = 0; i < kBatch; ++i) {
            batch.add(named(operation.picture + i), source(operation, i),
                      store::IfPictureExists::Replace);
        }
        batch.commit();
        break;
    }
    case Action::RenamePicture:
        store::renamePicture(library_, group, named(operation.picture), named(operation.other));
        break;
    case Action::DeletePicture:
        store::deletePicture(library_, group, named(operation.picture));
        break;
    case Action::CreateSubGroup:
        store::createGroup(library_, group, {subGroupName()});
        break;
    case Action::DeleteSubGroup:
        store::deleteGroup(library_, subGroup());
        break;
    case Action::CreateFile:
        store::createGroup(library_, std::nullopt, {ownFile(operation.other)});
        break;
    case Action::RenameFile:
        store::renameGroup(library_, addressOf(kOwnFile), {ownFile(operation.other)});
        break;
    case Action::RemoveFile:
        store::removeGroupFile(library_, addressOf(kOwnFile).file);
        break;
    case Action::Compact:
        store::compactGroupFile(library_, store::pathOf(library_, group.file));
        break;
    case Action::Look:
        break;
    }
}

// Whatever else is going on: nothing is damaged, and nothing that is held lasts.
std::vector<store::GroupEntry> Share::groupsOf(const store::FileName& file) const {
    const store::LockBudget budget(library_.lockWait);
    const store::GroupFileReading reading = store::readGroupFile(library_, file, budget);
    const bool isGone = reading.failure && reading.failure->code() == compound::ErrorCode::NotFound;
    if (reading.failure && !isGone) {
        throw std::runtime_error(reading.failure->what());
    }
    return reading.groups;
}

GroupAddress Share::subGroup() const {
    for (const store::GroupEntry& group : groupsOf({kShared})) {
        if (group.name.text == subGroupName()) {
            return group.address;
        }
    }
    throw std::runtime_error("the worker's sub-group is not there");
}

// All pictures are read; those of the worker are told.
void Share::readPictures(const GroupAddress& address, std::uint32_t group, State& state) const {
    const std::string prefix = prefixOf(worker_);
    store::walkPictures(library_, address, 0, [&](const store::StoredPicture& picture) {
        const std::uint32_t version = versionOf(picture);
        const std::string name = base::toUtf8(picture.name.text);
        if (name.starts_with(prefix)) {
            state[groupKey(group) + name.substr(prefix.size())] = version;
        }
        return store::TakePicture::Continue;
    });
}

// A worker that was killed in renaming its file may have left both names; nobody sees that.
std::vector<store::FileName> Share::files() const {
    std::vector<store::FileName> files = store::groupFiles(library_);
    const auto own = std::count_if(files.begin(), files.end(), [&](const auto& file) {
        return file.text == ownFile(0) || file.text == ownFile(1);
    });
    if (own > 1) {
        throw std::runtime_error("the worker's file is there twice");
    }
    return files;
}

State Share::read() const {
    State state;
    for (const store::FileName& file : files()) {
        const std::vector<store::GroupEntry> groups = groupsOf(file);
        for (const std::uint32_t which : {0U, 1U}) {
            if (file.text == ownFile(which)) {
                state["file"] = which;
                readPictures(store::topLevelAddress(file.text), kOwnFile, state);
            }
        }
        for (const store::GroupEntry& group : groups) {
            if (group.name.text == subGroupName()) {
                const std::u16string& parent = group.parent.text;
                state["sub-group"] =
                    parent == kShared ? 0 : static_cast<std::uint32_t>(parent.back() - u'0');
            }
        }
    }
    for (std::uint32_t group = 0; group < kSharedGroups; ++group) {
        readPictures(addressOf(group), group, state);
    }
    return state;
}

} // namespace stress
