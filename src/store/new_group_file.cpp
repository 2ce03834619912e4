#include "store/new_group_file.h"

#include "compound/error.h"

#include <random>
#include <string>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

constexpr std::string_view kPrefix = ".txs-";
constexpr std::string_view kSuffix = ".new";

std::string randomName() {
    static std::mt19937_64 generator{std::random_device{}()};
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string name(kPrefix);
    for (std::uint64_t rest = generator(), i = 0; i < 16; ++i, rest >>= 4U)
        name.push_back(kDigits[rest & 0xFU]);
    return name.append(kSuffix);
}

bool isTemporaryName(const std::string& name) {
    return name.size() == kPrefix.size() + 16 + kSuffix.size() && name.starts_with(kPrefix) &&
           name.ends_with(kSuffix);
}

// A temporary file whose maker lives is locked; one that can be locked was left by a crash.
void removeLeftovers(const Library& library, const std::filesystem::path& folder) {
    for (const compound::FolderEntry& entry : library.disk.list(folder)) {
        if (!entry.isRegularFile || !isTemporaryName(entry.name.string()))
            continue;
        try {
            const auto file = library.disk.open(folder / entry.name, Access::Read);
            if (file->lock(std::chrono::milliseconds{0}))
                library.disk.removeTemporary(folder / entry.name);
        } catch (const Error&) {
            // Another program is just removing or publishing it; nothing depends on our removal.
            continue;
        }
    }
}

} // namespace

NewGroupFile::NewGroupFile(const Library& library, std::filesystem::path target)
    : library_(library), target_(std::move(target)) {
    tellOfTarget([&] { create(); });
}

void NewGroupFile::create() {
    const std::filesystem::path folder = folderOf(target_);
    removeLeftovers(library_, folder);
    std::unique_ptr<compound::DiskFile> disk = createLocked(folder);
    try {
        file_.emplace(compound::CompoundFile::create(std::move(disk)));
    } catch (...) {
        library_.disk.removeTemporary(temporary_);
        throw;
    }
}

// Between creating and locking, another program may take the file for a leftover and remove it.
std::unique_ptr<compound::DiskFile>
NewGroupFile::createLocked(const std::filesystem::path& folder) {
    constexpr int kTries = 10;
    for (int i = 0; i < kTries; ++i) {
        temporary_ = folder / randomName();
        std::unique_ptr<compound::DiskFile> disk = library_.disk.create(temporary_);
        if (disk->lock(library_.lockWait) && disk->isStillAtPath())
            return disk;
    }
    throw Error(ErrorCode::Locked, temporary_, "the file is in use by another program");
}

NewGroupFile::~NewGroupFile() {
    if (published_)
        return;
    try {
        file_.reset();
        library_.disk.removeTemporary(temporary_);
    } catch (const std::exception&) {
        // Left for the next program that makes a group here: see removeLeftovers.
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

void NewGroupFile::publishInPlaceOf(compound::DiskFile& old) {
    write([&](compound::CompoundFile& file) { library_.disk.copyAttributes(old, file.disk()); });
    give([&] { library_.disk.renameReplacing(temporary_, target_); });
}

} // namespace store
