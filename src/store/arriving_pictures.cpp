#include "store/arriving_pictures.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/fitting_names.h"
#include "store/names.h"
#include "store/picture_source.h"
#include "store/steps.h"
#include "store/storage_access.h"
#include "store/trashing.h"

#include <exception>
#include <set>

namespace store {
namespace {

using compound::Error;
using compound::ErrorCode;

PictureSource sourceOf(const Library& library, const ArrivingPicture& picture) {
    PictureSource source;
    try {
        source.bytes =
            picture.bytes ? picture.bytes() : readPictureFile(library.disk, picture.source);
        const std::string type = picture.type.empty()
                                     ? typeCodeOf(base::fromPath(picture.source.filename()))
                                     : picture.type;
        source.record = recordOf(library.measure(source.bytes), type);
    } catch (const Error&) {
        throw;
    } catch (const std::exception& failure) {
        throw Error(ErrorCode::InvalidPicture, picture.source, failure.what());
    }
    return source;
}

class Arrival {
  public:
    Arrival(const Library& library, const GroupAddress& group, compound::Trash* trash)
        : library_(library), trashing_(library.disk, trash), access_(library) {
        access_.openGroup(group, compound::Access::ReadWrite);
        access_.openOrCreateInfo(group);
    }

    PicturesArrived run(std::span<const ArrivingPicture> pictures, Progress& progress) {
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            goOn(access_.file().disk().path(), progress, i, pictures.size());
            add(pictures[i]);
        }
        goOn(access_.file().disk().path(), progress, pictures.size(), pictures.size());
        trashing_.commit(access_);
        access_.CloseGaps(arrived_.names.size());
        return std::move(arrived_);
    }

  private:
    void add(const ArrivingPicture& picture) {
        std::optional<PictureSource> source;
        PictureName name = picture.name;
        try {
            requireValidPictureName(picture.source, name);
            const bool isFromBefore = isTaken(name) && !added_.contains(name.text);
            if (isFromBefore && picture.ifTaken == IfNameTaken::Skip) {
                throw Error(ErrorCode::Exists, picture.source,
                            "there is a picture \"" + base::toUtf8(name.text) + "\" already");
            }
            if (!isFromBefore || picture.ifTaken == IfNameTaken::KeepBoth ||
                isBarred(access_.groupStorage(), access_.infoStorage(), name)) {
                name = freePictureName(name, [this](const auto& other) { return isTaken(other); });
            }
            source = sourceOf(library_, picture);
        } catch (const Error& error) {
            arrived_.skipped.push_back({picture.source, error});
            return;
        }
        const auto present = access_.groupStorage().find(name.text);
        if (present && trashing_.isThere()) {
            arrived_.replaced.push_back(
                trashing_.add(access_.groupStorage(), access_.infoStorage(), *present));
        }
        putPicture(library_, access_.groupStorage(), access_.infoStorage(), name, *source);
        added_.insert(name.text);
        arrived_.names.push_back({picture.name, name});
    }

    bool isTaken(const PictureName& name) {
        return access_.groupStorage().find(name.text) ||
               access_.infoStorage().holdsStorage(name.text);
    }

    const Library& library_;
    Trashing trashing_;
    StorageAccess access_;
    std::set<std::u16string, ByName> added_;
    PicturesArrived arrived_;
};

} // namespace

PicturesArrived addArriving(const Library& library, const GroupAddress& group,
                            std::span<const ArrivingPicture> pictures, Progress& progress,
                            compound::Trash* trash) {
    return Arrival(library, group, trash).run(pictures, progress);
}

} // namespace store
