#include "store/trashing.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/damage.h"
#include "store/fitting_names.h"
#include "store/steps.h"

namespace store {

using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

Trashing::~Trashing() {
    for (const std::filesystem::path& file : files_) {
        removeFromTrash(disk_, *trash_, file);
    }
}

TrashedPicture Trashing::add(const StorageHandle& group, const std::optional<StorageHandle>& info,
                             const Element& element) {
    TrashedPicture picture{{element.name}, {}, {}};
    if (!isThere()) {
        return picture;
    }
    const auto record = info ? info->find(element.name) : std::nullopt;
    if (record && record->kind == ElementKind::Stream) {
        picture.record = unlessDamaged([&] {
                             return info->OpenStream(*record).GetString();
                         }).value_or(std::string());
    }
    const auto bytes = unlessDamaged([&] {
        return element.size > kMaximumPictureBytes ? base::Bytes()
                                                   : group.OpenStream(element).Get();
    });
    if (bytes && bytes->size() == element.size) {
        const std::string type = parseRecord(picture.record).type;
        picture.file =
            put(fileBaseNameFor(picture.name) + "." + (type.empty() ? "JPG" : type), *bytes);
        picture.state = stateInTrash(disk_, picture.file);
    }
    return picture;
}

std::filesystem::path Trashing::put(const std::string& fileName, std::span<const std::byte> bytes) {
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

std::filesystem::path Trashing::move(const std::string& fileName,
                                     std::span<const std::byte> bytes) {
    const std::filesystem::path path =
        trash_->stagingFolder() / base::toPath(base::fromUtf8(fileName));
    writePictureFile(disk_, path, bytes);
    disk_.open(path, compound::Access::ReadWrite)->sync();
    return trash_->moveThere(path);
}

void Trashing::commit(StorageAccess& access) {
    try {
        access.Commit();
    } catch (const Error& error) {
        if (error.code() == ErrorCode::OutcomeUnknown) {
            files_.clear();
        }
        throw;
    }
    files_.clear();
}

} // namespace store
