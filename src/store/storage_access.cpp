#include "store/storage_access.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/names.h"
#include "store/text_codec.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

namespace store {
namespace {

using compound::Error;
using compound::ErrorCode;

constexpr std::size_t kLongestText = 1024;
constexpr std::size_t kLongestRecord = 64; // "h", "w", "t", a type code and two numbers

// Null for a file that is being replaced right now.
std::unique_ptr<compound::DiskFile> tryOpen(compound::Disk& disk, const std::filesystem::path& path,
                                            compound::Access access) {
    try {
        return disk.open(path, access);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Locked) {
            throw;
        }
        return nullptr;
    }
}

} // namespace

void StreamHandle::Put(std::u16string_view text) {
    const auto bytes = encodeText(text);
    if (!bytes) {
        throw Error(ErrorCode::InvalidName, {},
                    "\"" + base::toUtf8(text) + "\" has characters outside the text code page");
    }
    stream_.assign(*bytes);
}

std::u16string StreamHandle::GetText() const {
    std::array<std::byte, kLongestText> buffer{};
    const std::size_t length = stream_.read(0, buffer);
    return decodeText(std::span(buffer).first(length));
}

void StreamHandle::PutString(std::string_view record) {
    stream_.assign(std::as_bytes(std::span(record)));
}

std::string StreamHandle::GetString() const {
    std::array<std::byte, kLongestRecord + 1> buffer{};
    const std::size_t length = stream_.read(0, buffer);
    if (length > kLongestRecord) {
        return {};
    }
    return {reinterpret_cast<const char*>(buffer.data()), length};
}

StorageHandle StorageHandle::OpenStorage(std::u16string_view name) const {
    return StorageHandle(storage_.openStorage(name));
}

StorageHandle StorageHandle::OpenStorage(const compound::Element& element) const {
    return StorageHandle(storage_.openStorage(element));
}

StorageHandle StorageHandle::CreateStorage(std::u16string_view name) {
    return StorageHandle(storage_.createStorage(name));
}

StreamHandle StorageHandle::OpenStream(std::u16string_view name) const {
    return StreamHandle(storage_.openStream(name));
}

StreamHandle StorageHandle::OpenStream(const compound::Element& element) const {
    return StreamHandle(storage_.openStream(element));
}

StreamHandle StorageHandle::CreateStream(std::u16string_view name) {
    return StreamHandle(storage_.createStream(name, compound::IfExists::ReplaceSameKind));
}

void StorageHandle::RenameElement(std::u16string_view from, std::u16string_view to) {
    storage_.rename(from, to);
}

void StorageHandle::DestroyElement(std::u16string_view name) {
    storage_.destroy(name);
}

void StorageHandle::DestroyStreamIfThere(std::u16string_view name) {
    const auto element = find(name);
    if (element && element->kind == compound::ElementKind::Stream) {
        storage_.destroy(element->name);
    }
}

bool StorageHandle::holdsStorage(std::u16string_view name) const {
    const auto element = find(name);
    return element && element->kind == compound::ElementKind::Storage;
}

std::optional<compound::Element> StorageHandle::find(std::u16string_view name,
                                                     const compound::Element* companion) const {
    return storage_.find(name, companion);
}

std::unique_ptr<compound::DiskFile> openLocked(compound::Disk& disk,
                                               const std::filesystem::path& path,
                                               compound::Access access,
                                               std::chrono::milliseconds wait) {
    constexpr std::chrono::milliseconds kPause{10}; // for a name that other machines have changed
    std::optional<LockBudget> budget; // started by the first file that was replaced meanwhile
    while (true) {
        if (std::unique_ptr<compound::DiskFile> file = tryOpen(disk, path, access)) {
            if (!file->lock(budget ? budget->remaining() : wait)) {
                throw Error(ErrorCode::Locked, path, "the file is in use by another program");
            }
            if (file->isStillAtPath()) {
                return file;
            }
        }
        if (!budget) {
            budget.emplace(wait);
            continue; // at once, also without patience: the name may lead to nothing now
        }
        const std::chrono::milliseconds left = budget->remaining();
        if (left.count() == 0) {
            throw Error(ErrorCode::Locked, path, "the file is being replaced by another program");
        }
        std::this_thread::sleep_for(std::min(left, kPause));
    }
}

void StorageAccess::openFile(const std::filesystem::path& path, compound::Access access,
                             std::chrono::milliseconds wait) {
    release();
    turn_ = library_.turns->take(path);
    fileStorage_.emplace(compound::CompoundFile::open(openLocked(library_.disk, path, access, wait),
                                                      access, library_.cache.get()));
}

void StorageAccess::openFile(const FileName& file, compound::Access access) {
    try {
        openFile(plainPathOf(library_, file), access, library_.lockWait);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NotFound) {
            throw;
        }
        openFile(pathOf(library_, file), access, library_.lockWait);
    }
}

void StorageAccess::openGroup(const GroupAddress& group, compound::Access access) {
    openFile(group.file, access);
    const auto element = root().find(group.storage.text);
    if (!element || element->kind != compound::ElementKind::Storage) {
        throw Error(ErrorCode::NotFound, fileStorage_->disk().path(),
                    "there is no group \"" + base::toUtf8(group.storage.text) + "\"");
    }
    groupStorage_.emplace(root().OpenStorage(*element));
    if (!isTopLevel(group)) {
        requireGroup(element->name);
    }
}

// An info storage, or another program's, is no group: nothing in it is ours to change.
void StorageAccess::requireGroup(std::u16string_view storage) {
    const bool isNumbered = storage.starts_with(kSubGroupPrefix);
    const bool hasTexts = isNumbered || groupStorage_->find(kNameStream).has_value() ||
                          groupStorage_->find(kParentStream).has_value();
    if (!hasTexts || endsWithIgnoringCase(storage, kInfoSuffix)) {
        throw Error(ErrorCode::NotFound, fileStorage_->disk().path(),
                    "\"" + base::toUtf8(storage) + "\" is no group");
    }
}

bool StorageAccess::openInfo(const GroupAddress& group) {
    infoStorage_.reset();
    const auto element = root().find(infoStorageOf(group.storage).text);
    if (!element || element->kind != compound::ElementKind::Storage) {
        return false;
    }
    infoStorage_.emplace(root().OpenStorage(*element));
    return true;
}

void StorageAccess::openOrCreateInfo(const GroupAddress& group) {
    if (!openInfo(group)) {
        infoStorage_.emplace(root().CreateStorage(infoStorageOf(group.storage).text));
    }
}

void StorageAccess::CloseGaps(std::size_t pictures) {
    if (pictures > 1) {
        fileStorage_->closeGaps();
    }
}

void StorageAccess::release() {
    infoStream_.reset();
    infoStorage_.reset();
    groupStream_.reset();
    groupStorage_.reset();
    fileStorage_.reset();
    turn_ = {};
}

} // namespace store
