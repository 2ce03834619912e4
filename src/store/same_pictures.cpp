#include "store/same_pictures.h"

#include "compound/error.h"
#include "store/group_operations.h"
#include "store/library_walk.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace store {
namespace {

using compound::Error;
using compound::ErrorCode;

using TellUnread = std::function<void(const Error&)>;

struct Known {
    PictureAddress picture;
    std::optional<std::size_t> hash = {}; // of its bytes, once they were wanted
};

std::size_t hashOf(const base::Bytes& bytes) {
    return std::hash<std::string_view>()(
        {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

class Search {
  public:
    Search(const Library& library, Progress& progress, TellUnread unread = {})
        : library_(library), progress_(progress), unread_(std::move(unread)) {}

    // What `read` gives; nothing when the file cannot be read.
    template <typename Read>
    auto ifReadable(Read read) -> std::optional<decltype(read())> {
        try {
            return read();
        } catch (const Error& error) {
            tell(error);
            return std::nullopt;
        }
    }

    // Calls `take` with every picture of every group that can be read.
    void forEachPicture(const std::function<void(const GroupAddress&, const PictureEntry&)>& take) {
        std::size_t read = 0;
        const auto files = readEachGroupFile<FileContent>(
            library_, [&](const FileName& file, std::size_t listed, FileContent& content) {
                if (progress_.isStopWanted()) {
                    throw Error(ErrorCode::Cancelled, library_.folder, "stopped");
                }
                progress_.report(std::min(read++, listed), listed + 1);
                return readFile(file, content);
            });
        for (const FileContent& file : files) {
            for (const auto& [group, pictures] : file.groups) {
                for (const PictureEntry& picture : pictures) {
                    take(group, picture);
                }
            }
            for (const Error& failure : file.failures) {
                tell(failure);
            }
        }
    }

    // By size: whatever has another one is another picture.
    void collect() {
        forEachPicture([this](const GroupAddress& group, const PictureEntry& picture) {
            bySize_[picture.bytes].push_back({{group, picture.name}, {}});
        });
    }

    std::vector<PictureAddress> othersOf(const PictureAddress& picture) {
        const auto entry =
            ifReadable([&] { return describePicture(library_, picture.group, picture.name); });
        std::vector<PictureAddress> others;
        const auto found = entry ? bySize_.find(entry->bytes) : bySize_.end();
        if (found == bySize_.end() || found->second.size() < 2) {
            return others;
        }
        const auto bytes = bytesOf(picture);
        for (Known& known : found->second) {
            const bool isItself = known.picture.group == picture.group &&
                                  sameName(known.picture.name.text, picture.name.text);
            if (bytes && !isItself && hasBytes(known, *bytes)) {
                others.push_back(known.picture);
            }
        }
        return others;
    }

  private:
    struct FileContent {
        std::vector<std::pair<GroupAddress, std::vector<PictureEntry>>> groups;
        std::vector<Error> failures;
    };

    // Whether all was there.
    bool readFile(const FileName& file, FileContent& content) {
        const GroupFileReading reading =
            readGroupFile(library_, file, LockBudget(library_.lockWait));
        bool isThere = !reading.isGone();
        if (reading.failure) {
            content.failures.push_back(*reading.failure);
        }
        for (const GroupEntry& group : reading.groups) {
            try {
                content.groups.emplace_back(group.address, listPictures(library_, group.address));
            } catch (const Error& error) {
                isThere = isThere && error.code() != ErrorCode::NotFound;
                content.failures.push_back(error);
            }
        }
        return isThere;
    }

    // A picture is read as often as another has its size, and a group's file twice.
    void tell(const Error& error) {
        if (unread_ && told_.insert(error.what()).second) {
            unread_(error);
        }
    }

    std::optional<base::Bytes> bytesOf(const PictureAddress& picture) {
        return ifReadable([&] { return readPicture(library_, picture.group, picture.name).bytes; });
    }

    // Two pictures of one hash are nearly always the same, but only bytes tell.
    bool hasBytes(Known& known, const base::Bytes& bytes) {
        if (known.hash && *known.hash != hashOf(bytes)) {
            return false;
        }
        const auto own = bytesOf(known.picture);
        known.hash = own ? std::optional(hashOf(*own)) : std::nullopt;
        return own == bytes;
    }

    const Library& library_;
    Progress& progress_;
    TellUnread unread_;
    std::set<std::string> told_;
    std::map<std::uint64_t, std::vector<Known>> bySize_;
};

} // namespace

std::vector<SamePictures> findSamePictures(const Library& library,
                                           std::span<const PictureAddress> pictures,
                                           Progress& progress, const TellUnread& unread) {
    Search search(library, progress, unread);
    search.collect();
    std::vector<SamePictures> result;
    for (const PictureAddress& picture : pictures) {
        if (progress.isStopWanted()) {
            throw Error(ErrorCode::Cancelled, library.folder, "stopped");
        }
        SamePictures same{picture, search.othersOf(picture)};
        if (!same.others.empty()) {
            result.push_back(std::move(same));
        }
    }
    return result;
}

std::vector<PictureAddress> allPictures(const Library& library,
                                        const std::optional<GroupAddress>& group) {
    std::vector<PictureAddress> pictures;
    if (group) {
        for (const PictureEntry& entry : listPictures(library, *group)) {
            pictures.push_back({*group, entry.name});
        }
        return pictures;
    }
    Search(library, noProgress())
        .forEachPicture([&](const GroupAddress& from, const PictureEntry& entry) {
            pictures.push_back({from, entry.name});
        });
    return pictures;
}

} // namespace store
