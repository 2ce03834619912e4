#include "store/pictures_from_files.h"

#include "base/picture_units.h"
#include "base/utf8.h"
#include "store/group_in_the_making.h"
#include "store/names.h"
#include "store/picture_source.h"
#include "store/storage_access.h"

#include <algorithm>
#include <functional>
#include <set>

namespace store {
namespace {

using compound::Error;
using compound::ErrorCode;

constexpr std::size_t kExtensionLength = 4; // the dot and three letters

bool isNamedAsPicture(std::u16string_view fileName) {
    return std::any_of(base::kTypeCodes.begin(), base::kTypeCodes.end(), [&](const auto code) {
        return endsWithIgnoringCase(fileName, std::u16string(1, u'.').append(base::fromUtf8(code)));
    });
}

// Hands every file of the list that is a picture to `put`, which stores it as part of a transaction
// in the group file `target`; what `put` throws ends the run.
class Run {
  public:
    using Put = std::function<void(const PictureName&, const PictureSource&)>;

    Run(const Library& library, std::filesystem::path target,
        std::span<const std::u16string> reserved, Progress& progress)
        : library_(library), target_(std::move(target)), reserved_(reserved), progress_(progress) {}

    // Names for which this is true are another picture's, which is to stay.
    void keep(std::function<bool(const PictureName&)> isKept) { isKept_ = std::move(isKept); }

    FilesAdded add(std::span<const std::filesystem::path> files, const Put& put) {
        FilesAdded result;
        for (std::size_t i = 0; i < files.size(); ++i) {
            progress_.report(i, files.size());
            if (progress_.isStopWanted()) {
                throw Error(ErrorCode::Cancelled, target_, "stopped");
            }
            addOne(files[i], pictureNameOf(files[i], i, reserved_), put, result);
        }
        if (progress_.isStopWanted()) {
            throw Error(ErrorCode::Cancelled, target_, "stopped");
        }
        progress_.report(files.size(), files.size());
        result.pictures = added_.size();
        return result;
    }

  private:
    void addOne(const std::filesystem::path& file, const PictureName& name, const Put& put,
                FilesAdded& result) {
        std::optional<PictureSource> source;
        try {
            refuseKept(name);
            source = readPictureSource(library_, file);
        } catch (const Error& error) {
            result.skipped.push_back({file, error});
            return;
        }
        put(name, *source);
        added_.insert(name.text);
    }

    void refuseKept(const PictureName& name) const {
        if (isKept_ && !added_.contains(name.text) && isKept_(name)) {
            throw Error(ErrorCode::Exists, target_,
                        "there is a picture \"" + base::toUtf8(name.text) + "\" already");
        }
    }

    const Library& library_;
    std::filesystem::path target_;
    std::span<const std::u16string> reserved_;
    Progress& progress_;
    std::function<bool(const PictureName&)> isKept_;
    std::set<std::u16string, ByName> added_;
};

} // namespace

std::vector<std::filesystem::path> pictureFilesIn(compound::Disk& disk,
                                                  const std::filesystem::path& folder) {
    std::vector<std::u16string> names;
    for (const compound::FolderEntry& entry : disk.list(folder)) {
        std::u16string name = base::fromPath(entry.name);
        if (entry.isRegularFile && isNamedAsPicture(name)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end(), listsBefore);
    std::vector<std::filesystem::path> files;
    files.reserve(names.size());
    for (const std::u16string& name : names) {
        files.push_back(folder / base::toPath(name));
    }
    return files;
}

PictureName pictureNameOf(const std::filesystem::path& file, std::size_t position,
                          std::span<const std::u16string> reserved) {
    std::u16string name = base::fromPath(file.filename());
    name.resize(name.size() - std::min(name.size(), kExtensionLength));
    const bool isReserved =
        std::any_of(reserved.begin(), reserved.end(),
                    [&](const std::u16string& other) { return sameName(name, other); });
    if (isReserved || !isValidPictureName(name)) {
        name = u"Picture" + base::fromUtf8(std::to_string(position));
    }
    return {std::move(name)};
}

FilesAdded createGroupFromFiles(const Library& library, const std::optional<GroupAddress>& parent,
                                const GroupName& name, std::span<const std::filesystem::path> files,
                                std::span<const std::u16string> reserved, Progress& progress) {
    GroupInTheMaking group(library, parent, name);
    Run run(library, group.path(), reserved, progress);
    FilesAdded result =
        run.add(files, [&](const PictureName& picture, const PictureSource& source) {
            group.add(picture, source);
        });
    group.commit();
    result.group = group.address();
    return result;
}

FilesAdded addFiles(const Library& library, const GroupAddress& group,
                    std::span<const std::filesystem::path> files, IfPictureExists ifExists,
                    std::span<const std::u16string> reserved, Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, compound::Access::ReadWrite);
    Run run(library, access.file().disk().path(), reserved, progress);
    const bool hadInfo = access.openInfo(group); // a new one holds pictures' records only
    run.keep([&](const PictureName& name) {
        return access.groupStorage().holdsStorage(name.text) ||
               (hadInfo && access.infoStorage().holdsStorage(name.text)) ||
               (ifExists == IfPictureExists::Refuse && access.groupStorage().find(name.text));
    });
    FilesAdded result = run.add(files, [&](const PictureName& name, const PictureSource& source) {
        access.openOrCreateInfo(group);
        putPicture(library, access.groupStorage(), access.infoStorage(), name, source);
    });
    access.Commit();
    access.CloseGaps(result.pictures);
    result.group = group;
    return result;
}

} // namespace store
