#include "store/picture_trash.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/damage.h"
#include "store/fitting_names.h"
#include "store/names.h"
#include "store/steps.h"
#include "store/storage_access.h"

#include <optional>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

// The files in the trash, which go out of it again unless the deletion was done.
class Trashing {
  public:
    Trashing(compound::Disk& disk, compound::Trash* trash) : disk_(disk), trash_(trash) {}
    Trashing(const Trashing&) = delete;
    Trashing& operator=(const Trashing&) = delete;

    ~Trashing() {
        for (const std::filesystem::path& file : files_) {
            removeFromTrash(disk_, *trash_, file);
        }
    }

    bool isThere() const { return trash_ != nullptr; }

    std::filesystem::path add(const std::string& fileName, std::span<const std::byte> bytes) {
        try {
            std::filesystem::path trashed = move(fileName, bytes);
            if (!trashed.empty()) {
                files_.push_back(trashed);
            }
            return trashed;
        } catch (const Error& failure) {
            throw compound::TrashFailure(failure);
        }
    }

    void keep() { files_.clear(); }

  private:
    std::filesystem::path move(const std::string& fileName, std::span<const std::byte> bytes) {
        const std::filesystem::path path =
            trash_->stagingFolder() / base::toPath(base::fromUtf8(fileName));
        writePictureFile(disk_, path, bytes);
        disk_.open(path, Access::ReadWrite)->sync();
        return trash_->moveThere(path);
    }

    compound::Disk& disk_;
    compound::Trash* trash_; // nullptr: there is none
    std::vector<std::filesystem::path> files_;
};

std::optional<Element> findPicture(StorageAccess& access, const PictureName& name) {
    auto element = access.groupStorage().find(name.text);
    if (element && (element->kind != ElementKind::Stream || isGroupText(element->name))) {
        element.reset();
    }
    return element;
}

TrashedPicture trashPicture(StorageAccess& access, bool hasInfo, const Element& element,
                            Trashing& trash) {
    TrashedPicture picture{{element.name}, {}, {}};
    if (!trash.isThere()) {
        return picture;
    }
    const auto record = hasInfo ? access.infoStorage().find(element.name) : std::nullopt;
    if (record && record->kind == ElementKind::Stream) {
        picture.record = unlessDamaged([&] {
                             return access.infoStorage().OpenStream(*record).GetString();
                         }).value_or(std::string());
    }
    const auto bytes = unlessDamaged([&] {
        return element.size > kMaximumPictureBytes
                   ? std::vector<std::byte>()
                   : access.groupStorage().OpenStream(element).Get();
    });
    if (bytes && bytes->size() == element.size) {
        const std::string type = parseRecord(picture.record).type;
        picture.file =
            trash.add(fileBaseNameFor(picture.name) + "." + (type.empty() ? "JPG" : type), *bytes);
    }
    return picture;
}

void destroyPicture(StorageAccess& access, bool hasInfo, const PictureName& name) {
    access.groupStorage().DestroyElement(name.text);
    if (hasInfo) {
        if (const auto record = access.infoStorage().find(name.text)) {
            access.infoStorage().DestroyElement(record->name);
        }
    }
}

} // namespace

std::vector<TrashedPicture> deletePictures(const Library& library, const GroupAddress& group,
                                           std::span<const PictureName> names,
                                           compound::Trash* trash, Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    const bool hasInfo = access.openInfo(group);
    const std::filesystem::path file = access.file().disk().path();
    Trashing trashing(library.disk, trash);
    std::vector<TrashedPicture> deleted;
    for (std::size_t i = 0; i < names.size(); ++i) {
        goOn(file, progress, i, names.size());
        if (const auto element = findPicture(access, names[i])) {
            deleted.push_back(trashPicture(access, hasInfo, *element, trashing));
            destroyPicture(access, hasInfo, deleted.back().name);
        }
    }
    goOn(file, progress, names.size(), names.size());
    try {
        access.Commit();
    } catch (const Error& error) {
        if (error.code() == ErrorCode::OutcomeUnknown) {
            trashing.keep();
        }
        throw;
    }
    trashing.keep();
    return deleted;
}

RestoredPictures restorePictures(const Library& library, const GroupAddress& group,
                                 std::span<const TrashedPicture> pictures, compound::Trash& trash,
                                 Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    access.openOrCreateInfo(group);
    const std::filesystem::path file = access.file().disk().path();
    const auto isTaken = [&](const PictureName& name) {
        return access.groupStorage().find(name.text).has_value();
    };
    RestoredPictures restored;
    std::vector<std::filesystem::path> files;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        goOn(file, progress, i, pictures.size());
        const TrashedPicture& picture = pictures[i];
        std::vector<std::byte> bytes;
        try {
            if (picture.file.empty()) {
                throw Error(ErrorCode::NotFound, file,
                            "no file of \"" + base::toUtf8(picture.name.text) +
                                "\" came to the trash");
            }
            bytes = readPictureFile(library.disk, picture.file);
        } catch (const Error& error) {
            restored.missing.push_back(error);
            continue;
        }
        const PictureName name = freePictureName(picture.name, isTaken);
        access.groupStorage().CreateStream(name.text).Put(bytes);
        if (!picture.record.empty()) {
            access.infoStorage().CreateStream(name.text).PutString(picture.record);
        }
        restored.names.push_back(name);
        files.push_back(picture.file);
    }
    goOn(file, progress, pictures.size(), pictures.size());
    access.Commit();
    for (const std::filesystem::path& trashed : files) {
        removeFromTrash(library.disk, trash, trashed);
    }
    return restored;
}

} // namespace store
