// Walking all pictures of a group: group storage and info storage lie in the same order, so one
// pass over both finds every picture's record without searching.
#include "base/utf8.h"
#include "compound/error.h"
#include "compound/names.h"
#include "store/damage.h"
#include "store/names.h"
#include "store/picture_operations.h"
#include "store/storage_access.h"

#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;

bool isPicture(const Element& element) {
    return element.kind == ElementKind::Stream && !isGroupText(element.name);
}

PictureRecord readRecord(const StorageHandle& info, const Element& element) {
    if (element.kind != ElementKind::Stream) {
        return {};
    }
    return parseRecord(info.OpenStream(element).GetString());
}

PictureRecord findRecord(const StorageHandle& info, std::u16string_view name,
                         const Element* picture = nullptr) {
    const auto element = info.find(name, picture);
    return element ? readRecord(info, *element) : PictureRecord{};
}

// Delivers records for names asked for in ascending order; a name that the pass misses (a tree in
// another program's order) is searched.
class RecordPass {
  public:
    explicit RecordPass(const StorageHandle& info) : info_(info), cursor_(info.elements()) {
        advance();
    }

    PictureRecord recordOf(std::u16string_view name) {
        return unlessDamaged([&] { return searchOn(name); }).value_or(PictureRecord{});
    }

  private:
    PictureRecord searchOn(std::u16string_view name) {
        int order = -1;
        while (any_ && (order = compound::compareNames(current_.name, name)) < 0) {
            advance();
        }
        return any_ && order == 0 ? readRecord(info_, current_) : findRecord(info_, name);
    }

    void advance() { any_ = cursor_.next(current_); }

    const StorageHandle& info_;
    compound::ElementCursor cursor_;
    Element current_;
    bool any_ = false;
};

// Nothing when there is no info storage, or one that cannot be walked.
std::optional<RecordPass> recordsOf(StorageAccess& access, const GroupAddress& group) {
    if (!access.openInfo(group)) {
        return std::nullopt;
    }
    return unlessDamaged([&] { return RecordPass(access.infoStorage()); });
}

PictureEntry entryOf(StorageAccess& access, const GroupAddress& group, const Element& element) {
    PictureRecord record;
    if (access.openInfo(group)) {
        record = unlessDamaged([&] {
                     return findRecord(access.infoStorage(), element.name, &element);
                 }).value_or(PictureRecord{});
    }
    return {{element.name}, element.size, std::move(record)};
}

// One picture with a damaged chain does not hide those behind it: it comes without bytes.
base::Bytes readUndamaged(const StorageHandle& group, const Element& element) {
    if (element.size > kMaximumPictureBytes) {
        return {};
    }
    return unlessDamaged([&] { return group.OpenStream(element).Get(); }).value_or(base::Bytes());
}

} // namespace

std::vector<PictureEntry> listPictures(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    std::optional<RecordPass> records = recordsOf(access, group);
    std::vector<PictureEntry> pictures;
    pictures.reserve(64);
    compound::ElementCursor cursor = access.groupStorage().elements();
    Element element;
    while (cursor.next(element)) {
        if (!isPicture(element)) {
            continue;
        }
        PictureRecord record = records ? records->recordOf(element.name) : PictureRecord{};
        pictures.push_back({{std::move(element.name)}, element.size, std::move(record)});
    }
    return pictures;
}

std::optional<PictureEntry> firstPicture(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    compound::ElementCursor cursor = access.groupStorage().elements();
    Element element;
    while (cursor.next(element)) {
        if (isPicture(element)) {
            return entryOf(access, group, element);
        }
    }
    return std::nullopt;
}

PictureEntry describePicture(const Library& library, const GroupAddress& group,
                             const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    const auto element = access.groupStorage().find(name.text);
    if (!element || !isPicture(*element)) {
        throw compound::Error(compound::ErrorCode::NotFound, access.file().disk().path(),
                              "there is no picture \"" + base::toUtf8(name.text) + "\"");
    }
    return entryOf(access, group, *element);
}

PictureNames listPictureNames(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    PictureNames pictures;
    compound::ElementCursor cursor = access.groupStorage().elements();
    Element element;
    for (std::size_t index = 0; cursor.next(element); ++index) {
        if (isPicture(element)) {
            pictures.elements.push_back(index);
            pictures.names.push_back({std::move(element.name)});
        }
    }
    const auto identity = access.file().disk().identity();
    if (identity) {
        pictures.latest = FileStamp{*identity, access.file().transactionSignature()};
        pictures.stamp = identity->settled ? pictures.latest : std::nullopt;
    }
    return pictures;
}

void readPictures(const Library& library, const GroupAddress& group,
                  std::span<const PictureName> names,
                  const std::function<TakePicture(std::uint64_t)>& wanted,
                  const std::function<void(base::Bytes)>& take) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    for (const PictureName& name : names) {
        const auto find = [&] { return access.groupStorage().find(name.text); };
        const auto element = unlessDamaged(find).value_or(std::nullopt);
        const bool isReadable =
            element && isPicture(*element) && element->size <= kMaximumPictureBytes;
        if (wanted(isReadable ? element->size : 0) == TakePicture::Stop) {
            return;
        }
        take(isReadable ? readUndamaged(access.groupStorage(), *element) : base::Bytes());
    }
}

void walkPictures(const Library& library, const GroupAddress& group, std::size_t start,
                  const std::function<TakePicture(const StoredPicture&)>& take) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    const bool hasInfo = access.openInfo(group);
    compound::ElementCursor cursor = access.groupStorage().elements();
    if (cursor.skip(start) < start) {
        return;
    }
    Element element;
    while (cursor.next(element)) {
        if (!isPicture(element)) {
            continue;
        }
        StoredPicture picture;
        if (hasInfo) {
            picture.record = unlessDamaged([&] {
                                 return findRecord(access.infoStorage(), element.name, &element);
                             }).value_or(PictureRecord{});
        }
        picture.bytes = readUndamaged(access.groupStorage(), element);
        picture.name.text = std::move(element.name);
        if (take(picture) == TakePicture::Stop) {
            return;
        }
    }
}

std::optional<PicturePlace> placeOfPicture(const Library& library, const GroupAddress& group,
                                           const PictureName& name) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    std::optional<PicturePlace> place;
    std::optional<PictureName> before;
    compound::ElementCursor cursor = access.groupStorage().elements();
    Element element;
    for (std::size_t index = 0; cursor.next(element); ++index) {
        if (!isPicture(element)) {
            continue;
        }
        if (place) {
            place->beside = PictureName{std::move(element.name)};
            break;
        }
        if (sameName(element.name, name.text)) {
            place = PicturePlace{index, before};
        }
        before = PictureName{std::move(element.name)};
    }
    return place;
}

} // namespace store
