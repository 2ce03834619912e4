#include "store/picture_trash.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/fitting_names.h"
#include "store/names.h"
#include "store/steps.h"
#include "store/storage_access.h"
#include "store/trashing.h"

#include <optional>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

std::optional<Element> findPicture(StorageAccess& access, const PictureName& name) {
    auto element = access.groupStorage().find(name.text);
    if (element && (element->kind != ElementKind::Stream || isGroupText(element->name))) {
        element.reset();
    }
    return element;
}

void destroyPicture(StorageAccess& access, bool hasInfo, const PictureName& name) {
    access.groupStorage().DestroyElement(name.text);
    if (hasInfo) {
        access.infoStorage().DestroyStreamIfThere(name.text);
    }
}

} // namespace

std::vector<TrashedPicture> deletePictures(const Library& library, const GroupAddress& group,
                                           std::span<const PictureName> names,
                                           compound::Trash* trash, Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    const bool hasInfo = access.openInfo(group);
    const auto info = hasInfo ? std::optional(access.infoStorage()) : std::nullopt;
    const std::filesystem::path file = access.file().disk().path();
    Trashing trashing(library.disk, trash);
    std::vector<TrashedPicture> deleted;
    for (std::size_t i = 0; i < names.size(); ++i) {
        goOn(file, progress, i, names.size());
        if (const auto element = findPicture(access, names[i])) {
            deleted.push_back(trashing.add(access.groupStorage(), info, *element));
            destroyPicture(access, hasInfo, deleted.back().name);
        }
    }
    goOn(file, progress, names.size(), names.size());
    trashing.commit(access);
    access.CloseGaps(deleted.size());
    return deleted;
}

RestoredPictures restorePictures(const Library& library, const GroupAddress& group,
                                 std::span<const TrashedPicture> pictures, compound::Trash& trash,
                                 IfNameTaken ifTaken, Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    access.openOrCreateInfo(group);
    const std::filesystem::path file = access.file().disk().path();
    const auto isTaken = [&](const PictureName& name) {
        return access.groupStorage().find(name.text) ||
               access.infoStorage().holdsStorage(name.text);
    };
    RestoredPictures restored;
    Trashing trashing(library.disk, &trash);
    std::vector<std::filesystem::path> files;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        goOn(file, progress, i, pictures.size());
        const TrashedPicture& picture = pictures[i];
        base::Bytes bytes;
        try {
            if (picture.file.empty()) {
                throw Error(ErrorCode::NotFound, file,
                            "no file of \"" + base::toUtf8(picture.name.text) +
                                "\" came to the trash");
            }
            requireInTrash(library.disk, picture.file, picture.state);
            bytes = readPictureFile(library.disk, picture.file);
        } catch (const Error& error) {
            restored.missing.push_back(error);
            continue;
        }
        PictureName name = picture.name;
        const auto present = findPicture(access, name);
        if (ifTaken == IfNameTaken::Replace && present &&
            !access.infoStorage().holdsStorage(name.text)) {
            trashing.add(access.groupStorage(), access.infoStorage(), *present);
            destroyPicture(access, true, name);
        } else {
            name = freePictureName(name, isTaken);
        }
        access.groupStorage().CreateStream(name.text).Put(bytes);
        if (!picture.record.empty()) {
            access.infoStorage().CreateStream(name.text).PutString(picture.record);
        }
        restored.names.push_back(name);
        files.push_back(picture.file);
    }
    goOn(file, progress, pictures.size(), pictures.size());
    trashing.commit(access);
    for (const std::filesystem::path& trashed : files) {
        removeFromTrash(library.disk, trash, trashed);
    }
    access.CloseGaps(restored.names.size());
    return restored;
}

} // namespace store
