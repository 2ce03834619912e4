#include "store/damaged_groups.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/damage.h"
#include "store/group_layout.h"
#include "store/storage_access.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

GroupFileState stateOf(const Error& error) {
    if (isAboutBytes(error.code())) {
        return GroupFileState::Damaged;
    }
    return error.code() == ErrorCode::Locked ? GroupFileState::Locked : GroupFileState::Unreadable;
}

// Opens the file, tests it, and lets `use` look at a sound one.
GroupFileReading examine(const Library& library, const std::filesystem::path& path,
                         const FileName& file, const LockBudget& budget,
                         const std::function<void(StorageAccess&, const StorageName&)>& use) {
    GroupFileReading reading;
    try {
        StorageAccess access(library);
        access.openFile(path, Access::Read, budget.remaining());
        const auto top = findTopLevelGroup(access.root(), file);
        if (!top) {
            throw Error(ErrorCode::Damaged, path,
                        "it holds no group of its own name (the file may have been renamed)");
        }
        use(access, *top);
        reading.state = GroupFileState::Sound;
    } catch (const Error& error) {
        reading.state = stateOf(error);
        reading.failure = error;
    }
    return reading;
}

// Looks at a locked file as readGroupFile() does, and through its own handle: some locks let no
// other one read. The file, still locked, stays with the caller or with `content`.
bool isDamaged(std::unique_ptr<compound::DiskFile>& held,
               std::optional<compound::CompoundFile>& content, const FileName& file) {
    try {
        content.emplace(compound::CompoundFile::open(std::move(held), Access::Read));
        const StorageHandle root(content->root());
        const auto top = findTopLevelGroup(root, file);
        if (top) {
            (void)readGroups(root, file, *top);
        }
        return !top;
    } catch (const Error& error) {
        if (!isAboutBytes(error.code())) {
            throw;
        }
        return true;
    }
}

} // namespace

GroupFileReading readGroupFile(const Library& library, const FileName& file,
                               const LockBudget& budget) {
    std::vector<GroupEntry> groups;
    GroupFileReading reading = examine(library, pathOf(library, file), file, budget,
                                       [&](StorageAccess& access, const StorageName& top) {
                                           groups = readGroups(access.root(), file, top);
                                       });
    reading.groups = std::move(groups);
    return reading;
}

GroupFileState testGroupFile(const Library& library, const std::filesystem::path& path,
                             const LockBudget& budget) {
    return examine(library, path, fileNameOf(path), budget,
                   [](StorageAccess&, const StorageName&) {})
        .state;
}

bool setAside(const Library& library, const FileName& file) {
    const std::filesystem::path path = pathOf(library, file);
    // Whoever tested it has let it go meanwhile: it may be sound by now, another file, or in use.
    // From here on nobody puts one in its place.
    const FileTurns::Turn turn = library.turns->take(path);
    auto held = openLocked(library.disk, path, Access::Read, std::chrono::milliseconds{0});
    std::optional<compound::CompoundFile> content;
    if (!isDamaged(held, content, file)) {
        return false;
    }
    const std::filesystem::path aside =
        library.folder / base::toPath(file.text + std::u16string(kDamagedFileSuffix));
    if (library.disk.exists(aside)) {
        library.disk.trash(aside);
    }
    library.disk.renameWithoutReplacing(path, aside);
    syncPlaceOf(library, aside);
    return true;
}

std::size_t removeDamagedFiles(const Library& library) {
    std::size_t removed = 0;
    for (const std::filesystem::path& path : damagedFiles(library)) {
        try {
            library.disk.trash(path);
            ++removed;
        } catch (const Error&) {
            continue; // stays, and is told of again at the next start
        }
    }
    if (removed > 0) {
        library.disk.syncFolder(library.folder);
    }
    return removed;
}

} // namespace store
