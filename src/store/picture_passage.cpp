#include "store/picture_passage.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/fitting_names.h"
#include "store/names.h"
#include "store/picture_source.h"
#include "store/steps.h"
#include "store/storage_access.h"
#include "store/trashing.h"

#include <set>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

// Where pictures come from or go to: a group's storages in an open file.
struct Place {
    StorageHandle group;
    std::optional<StorageHandle> info; // a source may have none
};

std::optional<StorageHandle> infoOf(StorageAccess& access, const GroupAddress& group) {
    return access.openInfo(group) ? std::optional(access.infoStorage()) : std::nullopt;
}

class Passing {
  public:
    Passing(const Library& library, const GroupAddress& from, const GroupAddress& to,
            PassageKind kind, compound::Trash* trash)
        : isOneFile_(pathOf(library, from.file) == pathOf(library, to.file)),
          isOneGroup_(isOneFile_ && sameName(from.storage.text, to.storage.text)),
          kind_(kind),
          trashing_(library.disk, trash),
          first_(library),
          second_(library) {
        open(library, from, to);
    }

    PicturesPassed run(std::span<const PassingPicture> pictures, Progress& progress) {
        PicturesPassed result;
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            goOn(path(), progress, i, pictures.size());
            pass(pictures[i], result);
        }
        goOn(path(), progress, pictures.size(), pictures.size());
        trashing_.commit(target());
        if (!isOneFile_ && kind_ == PassageKind::Move) {
            removeFromSource(result);
        }
        closeGaps(result.passed.size());
        return result;
    }

  private:
    // In an order that depends on the files alone, so that no two passages wait for each other.
    void open(const Library& library, const GroupAddress& from, const GroupAddress& to) {
        const Access wanted = kind_ == PassageKind::Move ? Access::ReadWrite : Access::Read;
        const bool isSourceFirst = pathOf(library, from.file) < pathOf(library, to.file);
        if (!isOneFile_ && isSourceFirst) {
            first_.openGroup(from, wanted);
        }
        second_.openGroup(to, Access::ReadWrite);
        second_.openOrCreateInfo(to);
        to_.emplace(Place{second_.groupStorage(), second_.infoStorage()});
        if (isOneFile_) {
            openSourceInTarget(from);
            return;
        }
        if (!isSourceFirst) {
            first_.openGroup(from, wanted);
        }
        from_.emplace(Place{first_.groupStorage(), infoOf(first_, from)});
    }

    void openSourceInTarget(const GroupAddress& from) {
        const auto group = second_.root().find(from.storage.text);
        if (!group || group->kind != ElementKind::Storage) {
            throw Error(ErrorCode::NotFound, path(),
                        "there is no group \"" + base::toUtf8(from.storage.text) + "\"");
        }
        from_.emplace(Place{second_.root().OpenStorage(group->name), infoOf(second_, from)});
    }

    StorageAccess& target() { return second_; }
    std::filesystem::path path() { return second_.file().disk().path(); }

    void pass(const PassingPicture& picture, PicturesPassed& result) {
        const auto element = from_->group.find(picture.name.text);
        if (!element || element->kind != ElementKind::Stream || isGroupText(element->name)) {
            result.gone.push_back(picture.name);
            return;
        }
        const auto isTaken = [&](const PictureName& name) {
            return to_->group.find(name.text) || to_->info->holdsStorage(name.text);
        };
        PictureName name{picture.as.text.empty() ? element->name : picture.as.text};
        if (isTaken(name)) {
            if (picture.ifTaken == IfNameTaken::Skip) {
                return;
            }
            if (picture.ifTaken == IfNameTaken::KeepBoth || !isReplaceable(name)) {
                name = freePictureName(name, isTaken);
            } else {
                trash(name, result);
            }
        }
        copy(from_->group, *element, to_->group, name);
        const auto record = from_->info ? from_->info->find(element->name) : std::nullopt;
        if (record && record->kind == ElementKind::Stream) {
            copy(*from_->info, *record, *to_->info, name);
        } else {
            to_->info->DestroyStreamIfThere(name.text); // it would be another picture's
        }
        result.passed.push_back({{element->name}, name});
        arrived_.insert(name.text);
        if (isOneFile_ && kind_ == PassageKind::Move) {
            destroy(*from_, result.passed.back().from);
        }
    }

    void trash(const PictureName& name, PicturesPassed& result) {
        const auto element = to_->group.find(name.text);
        if (trashing_.isThere()) {
            result.replaced.push_back(trashing_.add(to_->group, to_->info, *element));
        }
    }

    // Neither what is on its way nor what has just come, nor another program's storage.
    bool isReplaceable(const PictureName& name) const {
        return !isOneGroup_ && !arrived_.contains(name.text) &&
               !isBarred(to_->group, *to_->info, name);
    }

    void copy(const StorageHandle& from, const Element& element, StorageHandle to,
              const PictureName& name) {
        if (element.size > kMaximumPictureBytes) {
            throw Error(ErrorCode::TooLarge, path(),
                        "\"" + base::toUtf8(element.name) + "\" is too large for a picture");
        }
        const base::Bytes bytes = from.OpenStream(element).Get();
        to.CreateStream(name.text).Put(bytes);
    }

    static void destroy(Place& place, const PictureName& name) {
        place.group.DestroyElement(name.text);
        if (place.info) {
            place.info->DestroyStreamIfThere(name.text);
        }
    }

    // The pictures have arrived: what keeps them from going here is told, and undoes nothing.
    void removeFromSource(PicturesPassed& result) {
        try {
            for (const PassedPicture& picture : result.passed) {
                destroy(*from_, picture.from);
            }
            first_.Commit();
        } catch (const Error& error) {
            result.sourceFailure = error;
        }
    }

    // Once both groups have what they are to have: a power cut before that leaves pictures in both.
    void closeGaps(std::size_t pictures) {
        target().CloseGaps(pictures);
        if (!isOneFile_ && kind_ == PassageKind::Move) {
            first_.CloseGaps(pictures);
        }
    }

    bool isOneFile_;
    bool isOneGroup_;
    PassageKind kind_;
    std::set<std::u16string, ByName> arrived_;
    Trashing trashing_;
    StorageAccess first_;  // of the source, if it is another file
    StorageAccess second_; // of the target
    std::optional<Place> from_;
    std::optional<Place> to_;
};

} // namespace

PicturesPassed passPictures(const Library& library, const GroupAddress& from,
                            const GroupAddress& to, std::span<const PassingPicture> pictures,
                            PassageKind kind, Progress& progress, compound::Trash* trash) {
    if (from == to && kind == PassageKind::Move) {
        return {};
    }
    return Passing(library, from, to, kind, trash).run(pictures, progress);
}

} // namespace store
