#include "store/group_in_the_making.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_layout.h"
#include "store/new_group_file.h"
#include "store/storage_access.h"

#include <functional>
#include <utility>

namespace store {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

namespace {

void requireValidGroupName(const std::filesystem::path& file, const GroupName& name,
                           GroupLevel level) {
    if (!isValidGroupName(name.text, level)) {
        throw Error(ErrorCode::InvalidName, file,
                    "\"" + base::toUtf8(name.text) + "\" cannot be a group's name");
    }
}

} // namespace

struct GroupInTheMaking::State {
    explicit State(const Library& theLibrary) : library(theLibrary) {}

    // Does something to the file whose transaction the group is part of.
    void change(const std::function<void()>& action) {
        if (newFile) {
            newFile->write([&](compound::CompoundFile&) { action(); });
        } else {
            action();
        }
    }

    void createPair(StorageHandle root, std::u16string_view parent, const GroupName& name) {
        createGroupPair(root, address.storage, parent, name.text);
        group.emplace(root.OpenStorage(address.storage.text));
        info.emplace(root.OpenStorage(infoStorageOf(address.storage).text));
    }

    const Library& library;
    GroupAddress address;
    std::filesystem::path path;
    bool replaces = false;               // a file that is there
    std::optional<NewGroupFile> newFile; // of a top-level group
    std::optional<StorageAccess> access; // to the file of the group above
    std::optional<StorageHandle> group;
    std::optional<StorageHandle> info;
};

GroupInTheMaking::GroupInTheMaking(const Library& library,
                                   const std::optional<GroupAddress>& parent, const GroupName& name,
                                   IfTaken ifTaken)
    : state_(std::make_unique<State>(library)) {
    if (parent) {
        beginBelow(*parent, name);
    } else {
        beginFile(name, ifTaken);
    }
}

GroupInTheMaking::~GroupInTheMaking() = default;

void GroupInTheMaking::beginFile(const GroupName& name, IfTaken ifTaken) {
    const Library& library = state_->library;
    requireValidGroupName(library.folder, name, GroupLevel::TopLevel);
    state_->address = topLevelAddress(name.text);
    state_->path = pathOf(library, state_->address.file);
    state_->replaces = library.disk.exists(state_->path);
    if (state_->replaces && ifTaken == IfTaken::Refuse) {
        throw Error(ErrorCode::Exists, state_->path, "the group exists already");
    }
    state_->newFile.emplace(library, state_->path, NewGroupFile::Content::Fresh);
    state_->newFile->write([&](compound::CompoundFile& content) {
        state_->createPair(StorageHandle(content.root()), kNoParent, name);
    });
}

void GroupInTheMaking::beginBelow(const GroupAddress& parent, const GroupName& name) {
    requireValidGroupName(state_->library.folder, name, GroupLevel::SubGroup);
    StorageAccess& access = state_->access.emplace(state_->library);
    access.openGroup(parent, Access::ReadWrite); // a vanished parent is found out here
    state_->path = access.file().disk().path();
    state_->address = {parent.file, nextSubGroup(access.root())};
    state_->createPair(access.root(), parentText(access.root(), parent.storage, state_->path),
                       name);
}

const GroupAddress& GroupInTheMaking::address() const {
    return state_->address;
}

const std::filesystem::path& GroupInTheMaking::path() const {
    return state_->path;
}

void GroupInTheMaking::add(const PictureName& name, const PictureSource& source) {
    requireValidPictureName(state_->path, name);
    state_->change(
        [&] { putPicture(state_->library, *state_->group, *state_->info, name, source); });
}

void GroupInTheMaking::commit() {
    if (!state_->newFile) {
        state_->access->Commit();
        state_->access->release();
        return;
    }
    state_->newFile->prepare(); // what can fail for want of space fails with the old file in place
    if (state_->replaces) {
        replaceFile();
    } else {
        state_->newFile->publish();
    }
}

// The old file cannot be brought back from the trash: whoever misses the group is told where it is.
void GroupInTheMaking::replaceFile() {
    try {
        removeGroupFile(state_->library, state_->address.file);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::OutcomeUnknown) {
            throw;
        }
        // It is in the trash, and publishing syncs the folder.
    }
    try {
        state_->newFile->publish();
    } catch (const Error& error) {
        if (state_->newFile->isPublished()) {
            throw;
        }
        throw Error(error.code(), error.file(),
                    error.cause() + "; the group file that was to be replaced is in the trash");
    }
}

} // namespace store
