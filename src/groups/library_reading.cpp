#include "groups/library_reading.h"

#include "app/message_box.h"
#include "compound/error.h"
#include "store/damaged_groups.h"

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
    std::vector<GroupFile> files;
    for (const store::FileName& name : store::groupFiles(library)) {
        GroupFile file{name, store::readGroupFile(library, name, budget)};
        if (file.reading.state == store::GroupFileState::Sound) {
            files.push_back(std::move(file));
        }
    }
    return files;
}

LibraryReading readLibrary(const store::Library& library, const store::LockBudget& budget,
                           store::Progress& progress) {
    LibraryReading result;
    std::vector<store::FileName> names;
    try {
        names = store::groupFiles(library);
    } catch (const compound::Error&) {
        return result; // an unreachable library is shown as an empty tree
    }
    result.reachable = true;
    result.files.reserve(names.size());
    for (const store::FileName& name : names) {
        progress.report(result.files.size() + result.setAside, names.size());
        if (std::optional<GroupFile> file = readGroupFileAgain(library, name, budget)) {
            result.files.push_back(std::move(*file));
        } else {
            ++result.setAside;
        }
    }
    return result;
}

} // namespace groups
