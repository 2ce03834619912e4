#include "store/new_group_file.h"

#include "compound/error.h"
#include "store/leftovers.h"

#include <utility>

namespace store {
namespace {

using compound::Error;
using compound::ErrorCode;

} // namespace

NewGroupFile::NewGroupFile(const Library& library, std::filesystem::path target, Content content,
                           compound::SectorSize sectorSize)
    : library_(library), target_(std::move(target)) {
    tellOfTarget([&] { create(content, sectorSize); });
}

void NewGroupFile::create(Content content, compound::SectorSize sectorSize) {
    const std::filesystem::path folder = folderOf(target_);
    removeUnfinishedFiles(library_, folder);
    std::unique_ptr<compound::DiskFile> disk = createLocked(folder, content);
    try {
        file_.emplace(compound::CompoundFile::create(std::move(disk), sectorSize));
    } catch (...) {
        library_.disk.removeTemporary(temporary_);
        throw;
    }
}

// Between creating and locking, another program may take the file for a leftover and remove it. The
// name may be taken as well: processes that one has forked draw the same ones.
std::unique_ptr<compound::DiskFile> NewGroupFile::createLocked(const std::filesystem::path& folder,
                                                               Content content) {
    constexpr int kTries = 10;
    for (int i = 0; i < kTries; ++i) {
        temporary_ = folder / nameInTheMaking();
        try {
            auto created = content == Content::Copied ? library_.disk.createPrivate(temporary_)
                                                      : library_.disk.create(temporary_);
            if (auto locked = lockOrRemove(std::move(created))) {
                return locked;
            }
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Exists) {
                throw;
            }
        }
    }
    throw Error(ErrorCode::Locked, temporary_, "the file is in use by another program");
}

// Where there are no locks no listing would ever clear it away.
std::unique_ptr<compound::DiskFile>
NewGroupFile::lockOrRemove(std::unique_ptr<compound::DiskFile> created) {
    try {
        return lockNew(library_, std::move(created));
    } catch (const Error&) {
        library_.disk.removeTemporary(temporary_);
        throw;
    }
}

NewGroupFile::~NewGroupFile() {
    if (published_) {
        return;
    }
    try {
        file_.reset();
        library_.disk.removeTemporary(temporary_);
    } catch (const std::exception&) {
        // Left for the next program that lists the library: see clearLeftovers.
        published_ = false;
    }
}

void NewGroupFile::tellOfTarget(const std::function<void()>& action) const {
    try {
        action();
    } catch (const Error& error) {
        throw error.file() == temporary_ ? Error(error.code(), target_, error.cause()) : error;
    }
}

void NewGroupFile::write(const std::function<void(compound::CompoundFile&)>& build) {
    tellOfTarget([&] { build(*file_); });
}

void NewGroupFile::prepare() {
    tellOfTarget([&] { file_->commit(); });
}

void NewGroupFile::give(const std::function<void()>& rename) {
    prepare();
    tellOfTarget(rename);
    published_ = true;
    syncPlaceOf(library_, target_);
}

void NewGroupFile::publish() {
    give([&] { library_.disk.renameWithoutReplacing(temporary_, target_); });
}

void NewGroupFile::takeAttributes(compound::DiskFile& old) {
    tellOfTarget([&] { library_.disk.copyAttributes(old, file_->disk()); });
}

void NewGroupFile::publishReplacing() {
    give([&] { library_.disk.renameReplacing(temporary_, target_); });
}

} // namespace store
