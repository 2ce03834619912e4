#include "store/picture_operations.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/damage.h"
#include "store/names.h"
#include "store/picture_source.h"
#include "store/storage_access.h"

#include <string>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

constexpr std::size_t kLongestRecord = 64; // bytes

Error missingPicture(const std::filesystem::path& file, const PictureName& name) {
    return {ErrorCode::NotFound, file, "there is no picture \"" + base::toUtf8(name.text) + "\""};
}

// The picture's stream as the group spells it.
std::optional<Element> pictureStream(StorageAccess& access, const PictureName& name) {
    auto element = access.groupStorage().find(name.text);
    if (element && (element->kind != ElementKind::Stream || isGroupText(element->name))) {
        element.reset();
    }
    return element;
}

Element requirePicture(StorageAccess& access, const PictureName& name) {
    auto element = pictureStream(access, name);
    if (!element) {
        throw missingPicture(access.file().disk().path(), name);
    }
    return *std::move(element);
}

PictureRecord readRecord(StorageAccess& access, std::u16string_view name,
                         const Element* picture = nullptr) {
    const auto read = [&]() -> PictureRecord {
        const auto element = access.infoStorage().find(name, picture);
        if (!element || element->kind != ElementKind::Stream) {
            return {};
        }
        access.infoStream().emplace(access.infoStorage().OpenStream(*element));
        return parseRecord(access.infoStream()->GetString());
    };
    return unlessDamaged(read).value_or(PictureRecord{});
}

// Both become the file's state with the caller's Commit.
void storePicture(const Library& library, StorageAccess& access, const GroupAddress& group,
                  const PictureName& name, const PictureSource& source) {
    access.openOrCreateInfo(group);
    if (isBarred(access.groupStorage(), access.infoStorage(), name)) {
        throw Error(ErrorCode::Exists, access.file().disk().path(),
                    "a storage of another program has the name \"" + base::toUtf8(name.text) +
                        "\"");
    }
    putPicture(library, access.groupStorage(), access.infoStorage(), name, source);
}

// Looks for the file only when an error has to name it.
void requireValidName(const Library& library, const GroupAddress& group, const PictureName& name) {
    if (!isValidPictureName(name.text)) {
        requireValidPictureName(pathOf(library, group.file), name);
    }
}

void refuseExisting(StorageAccess& access, const PictureName& name, IfPictureExists ifExists) {
    if (ifExists == IfPictureExists::Refuse && access.groupStorage().find(name.text)) {
        throw Error(ErrorCode::Exists, access.file().disk().path(),
                    "there is a picture \"" + base::toUtf8(name.text) + "\" already");
    }
}

} // namespace

void writePictureFile(compound::Disk& disk, const std::filesystem::path& path,
                      std::span<const std::byte> bytes) {
    disk.removeTemporary(path);
    const auto file = disk.create(path);
    try {
        file->write(0, bytes);
    } catch (...) {
        disk.removeTemporary(path);
        throw;
    }
}

struct PictureBatch::State {
    State(const Library& theLibrary, GroupAddress theGroup)
        : library(theLibrary), group(std::move(theGroup)), access(library) {}

    const Library& library;
    GroupAddress group;
    StorageAccess access;
    std::size_t added = 0;
};

PictureBatch::PictureBatch(const Library& library, const GroupAddress& group)
    : state_(std::make_unique<State>(library, group)) {
    state_->access.openGroup(group, Access::ReadWrite);
}

PictureBatch::~PictureBatch() = default;

void PictureBatch::add(const PictureName& name, const std::filesystem::path& source,
                       IfPictureExists ifExists) {
    requireValidPictureName(state_->access.file().disk().path(), name);
    refuseExisting(state_->access, name, ifExists);
    const PictureSource read = readPictureSource(state_->library, source);
    state_->access.file().makeRoom(read.bytes.size() + kLongestRecord);
    storePicture(state_->library, state_->access, state_->group, name, read);
    ++state_->added;
}

void PictureBatch::commit() {
    state_->access.Commit();
    state_->access.CloseGaps(state_->added);
}

void addPicture(const Library& library, const GroupAddress& group, const PictureName& name,
                const std::filesystem::path& source, IfPictureExists ifExists) {
    requireValidName(library, group, name);
    const PictureSource read = readPictureSource(library, source);
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    refuseExisting(access, name, ifExists);
    storePicture(library, access, group, name, read);
    access.Commit();
}

bool testPictureName(const Library& library, const GroupAddress& group,
                     const PictureName& name) noexcept {
    try {
        if (!isValidPictureName(name.text)) {
            return false;
        }
        StorageAccess access(library);
        access.openGroup(group, Access::Read);
        return true;
    } catch (...) {
        return false;
    }
}

std::optional<PictureName> findPicture(const Library& library, const GroupAddress& group,
                                       const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    auto element = pictureStream(access, name);
    if (!element) {
        return std::nullopt;
    }
    return PictureName{std::move(element->name)};
}

bool pictureExists(const Library& library, const GroupAddress& group, const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    return isGroupText(name.text) || access.groupStorage().find(name.text).has_value();
}

StoredPicture readPicture(const Library& library, const GroupAddress& group,
                          const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    const Element element = requirePicture(access, name);
    if (element.size > kMaximumPictureBytes) {
        throw Error(ErrorCode::TooLarge, access.file().disk().path(),
                    "\"" + base::toUtf8(element.name) + "\" is too large for a picture");
    }
    StoredPicture picture{{element.name}, {}, {}};
    if (access.openInfo(group)) {
        picture.record = readRecord(access, element.name, &element);
    }
    access.groupStream().emplace(access.groupStorage().OpenStream(element));
    picture.bytes = access.groupStream()->Get();
    return picture;
}

std::string readPictureType(const Library& library, const GroupAddress& group,
                            const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    return access.openInfo(group) ? readRecord(access, name.text).type : std::string();
}

void renamePicture(const Library& library, const GroupAddress& group, const PictureName& from,
                   const PictureName& to) {
    requireValidName(library, group, to);
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    const Element picture = requirePicture(access, from);
    if (picture.name == to.text) {
        return;
    }
    access.groupStorage().RenameElement(picture.name, to.text);
    if (access.openInfo(group)) {
        StorageHandle& info = access.infoStorage();
        // A record that stands under the new name belongs to no picture.
        if (!sameName(from.text, to.text)) {
            info.DestroyStreamIfThere(to.text);
        }
        const auto record = info.find(from.text);
        if (record && record->kind == ElementKind::Stream) {
            info.RenameElement(record->name, to.text);
        }
    }
    access.Commit();
}

void deletePicture(const Library& library, const GroupAddress& group, const PictureName& name) {
    if (name.text.empty()) {
        return;
    }
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    const Element picture = requirePicture(access, name);
    access.groupStorage().DestroyElement(picture.name);
    if (access.openInfo(group)) {
        access.infoStorage().DestroyStreamIfThere(picture.name);
    }
    access.Commit();
}

std::filesystem::path exportPicture(const Library& library, const GroupAddress& group,
                                    const PictureName& name, const std::filesystem::path& folder,
                                    const std::string& baseName) {
    return exportPicture(library, readPicture(library, group, name), folder, baseName);
}

std::filesystem::path exportPicture(const Library& library, const StoredPicture& picture,
                                    const std::filesystem::path& folder,
                                    const std::string& baseName) {
    if (baseName.empty() || baseName.find_first_of("/\\:") != std::string::npos) {
        throw Error(ErrorCode::InvalidName, folder,
                    "\"" + baseName + "\" cannot be a file's base name");
    }
    const std::string type = picture.record.type.empty() ? "JPG" : picture.record.type;
    std::filesystem::path path = folder / (baseName + "." + type);
    writePictureFile(library.disk, path, picture.bytes);
    return path;
}

} // namespace store
