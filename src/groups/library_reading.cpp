#include "groups/library_reading.h"

#include "app/message_box.h"
#include "compound/error.h"
#include "store/damaged_groups.h"
#include "store/library_walk.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace groups {

GroupFile readAsItIs(const store::Library& library, const store::FileName& file,
                     const store::LockBudget& budget) {
    const auto state = library.disk.glance(store::pathOf(library, file));
    GroupFile group{file, store::readGroupFile(library, file, budget), {}, state};
    if (group.reading.failure) {
        group.trouble = app::errorText(*group.reading.failure);
    }
    return group;
}

std::optional<GroupFile> readGroupFileAgain(const store::Library& library,
                                            const store::FileName& file,
                                            const store::LockBudget& budget) {
    GroupFile group = readAsItIs(library, file, budget);
    if (group.reading.state == store::GroupFileState::Damaged) {
        try {
            if (store::setAside(library, file)) {
                return std::nullopt;
            }
            return readAsItIs(library, file, budget); // somebody has mended it just now
        } catch (const std::exception& error) {
            group.trouble += u'\n' + app::errorText(error);
        }
    }
    return group;
}

std::vector<GroupFile> readSoundFiles(const store::Library& library,
                                      const store::LockBudget& budget) {
    auto files = store::readEachGroupFile<GroupFile>(
        library, [&](const store::FileName& name, std::size_t, GroupFile& file) {
            file = {name, store::readGroupFile(library, name, budget)};
            return !file.reading.isGone();
        });
    std::erase_if(files, [](const GroupFile& file) {
        return file.reading.state != store::GroupFileState::Sound;
    });
    return files;
}

LibraryReading readLibrary(const store::Library& library, const store::LockBudget& budget,
                           store::Progress& progress) {
    LibraryReading result;
    std::size_t read = 0;
    std::vector<std::optional<GroupFile>> files;
    try {
        files = store::readEachGroupFile<std::optional<GroupFile>>(
            library,
            [&](const store::FileName& name, std::size_t listed, std::optional<GroupFile>& file) {
                progress.report(std::min(read++, listed), listed);
                file = readGroupFileAgain(library, name, budget);
                result.setAside += file ? 0 : 1;
                return !file || !file->reading.isGone();
            });
    } catch (const compound::Error&) {
        return {}; // an unreachable library is shown as an empty tree
    }
    result.reachable = true;
    result.files.reserve(files.size());
    for (std::optional<GroupFile>& file : files) {
        if (file) {
            result.files.push_back(std::move(*file));
        }
    }
    return result;
}

} // namespace groups
