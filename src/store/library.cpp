#include "store/library.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/leftovers.h"
#include "store/names.h"

#include <algorithm>
#include <utility>

namespace store {
namespace {

constexpr std::size_t kSuffixLength = 4;

std::vector<std::u16string> filesEndingIn(const std::vector<compound::FolderEntry>& entries,
                                          std::u16string_view suffix) {
    std::vector<std::u16string> names;
    for (const compound::FolderEntry& entry : entries) {
        std::u16string name = base::fromPath(entry.name);
        const bool hasBaseName = name.size() > suffix.size();
        if (entry.isRegularFile && hasBaseName && endsWithIgnoringCase(name, suffix)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end(), listsBefore);
    return names;
}

std::vector<FileName> groupFilesAmong(const std::vector<compound::FolderEntry>& entries) {
    std::vector<FileName> files;
    for (std::u16string& name : filesEndingIn(entries, kGroupFileSuffix)) {
        name.resize(name.size() - kSuffixLength);
        files.push_back({std::move(name)});
    }
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

enum class Leftovers { AreCleared, Stay };

std::vector<FileName> listed(const Library& library, Leftovers leftovers) {
    constexpr int kTries = 10; // on a volume whose listing lags behind what can be opened
    bool isToBeCleared = leftovers == Leftovers::AreCleared;
    int doubts = 0;
    std::vector<FileName> files;
    for (int i = 0; i < kTries && doubts < 2; ++i) {
        const std::vector<compound::FolderEntry> entries = library.disk.list(library.folder);
        files = groupFilesAmong(entries);
        const bool isPlain = std::none_of(entries.begin(), entries.end(), [](const auto& entry) {
            return isFileOfPassage(entry.name);
        });
        if (isPlain) {
            break;
        }
        if (std::exchange(isToBeCleared, false) && clearLeftovers(library)) {
            continue;
        }
        const ListingIs listing = leaveOutOldNames(library, entries, files);
        if (listing == ListingIs::Known) {
            break;
        }
        doubts += listing == ListingIs::Doubtful ? 1 : 0;
    }
    return files;
}

} // namespace

LockBudget::LockBudget(std::chrono::milliseconds total)
    : end_(std::chrono::steady_clock::now() + total) {}

std::chrono::milliseconds LockBudget::remaining() const {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end_ - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds{0});
}

std::filesystem::path plainPathOf(const Library& library, const FileName& file) {
    // Every operation comes by here: the text is put together first, a path is dear.
    std::string text = library.folder.string();
    if (library.folder.has_filename()) {
        text += '/';
    }
    return text += base::toUtf8(file.text) + ".stg";
}

std::filesystem::path pathOf(const Library& library, const FileName& file) {
    std::filesystem::path path = plainPathOf(library, file);
    try {
        if (library.disk.exists(path)) {
            return path;
        }
        // "A.STG" is the group file of A as well, on systems that tell the two names apart.
        for (const std::u16string& other :
             filesEndingIn(library.disk.list(library.folder), kGroupFileSuffix)) {
            if (other.substr(0, other.size() - kSuffixLength) == file.text) {
                return library.folder / base::toPath(other);
            }
        }
    } catch (const compound::Error&) {
        // The folder cannot be entered or listed: opening the plain path will say why.
        return path;
    }
    return path;
}

FileName fileNameOf(const std::filesystem::path& path) {
    std::u16string name = base::fromPath(path.filename());
    if (endsWithIgnoringCase(name, kGroupFileSuffix)) {
        name.resize(name.size() - kSuffixLength);
    }
    return {std::move(name)};
}

std::vector<FileName> groupFiles(const Library& library) {
    return listed(library, Leftovers::AreCleared);
}

std::vector<FileName> groupFilesAsTheyAre(const Library& library) {
    return listed(library, Leftovers::Stay);
}

std::vector<FileName> everyGroupFile(const Library& library) {
    return groupFilesAmong(library.disk.list(library.folder));
}

std::vector<std::filesystem::path> damagedFiles(const Library& library) {
    std::vector<std::filesystem::path> files;
    for (const std::u16string& name :
         filesEndingIn(library.disk.list(library.folder), kDamagedFileSuffix)) {
        files.push_back(library.folder / base::toPath(name));
    }
    return files;
}

std::filesystem::path folderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

void syncPlaceOf(const Library& library, const std::filesystem::path& file) {
    try {
        library.disk.syncFolder(folderOf(file));
    } catch (const compound::Error& error) {
        throw compound::Error(compound::ErrorCode::OutcomeUnknown, file, error.cause());
    }
}

} // namespace store
