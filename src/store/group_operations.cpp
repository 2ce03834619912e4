#include "store/group_operations.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_in_the_making.h"
#include "store/group_layout.h"
#include "store/storage_access.h"

#include <algorithm>
#include <set>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

// No more than whether it is none, one or several has to be known, so the rest is not walked.
std::size_t countUpToTwo(const StorageHandle& group) {
    std::size_t pictures = 0;
    compound::ElementCursor cursor = group.elements();
    compound::Element element;
    while (pictures < 2 && cursor.next(element)) {
        const bool isStream = element.kind == compound::ElementKind::Stream;
        pictures += isStream && !isGroupText(element.name) ? 1U : 0U;
    }
    return pictures;
}

} // namespace

GroupAddress createGroup(const Library& library, const std::optional<GroupAddress>& parent,
                         const GroupName& name, IfTaken ifTaken) {
    GroupInTheMaking group(library, parent, name, ifTaken);
    group.commit();
    return group.address();
}

bool testGroupName(const Library&, const GroupName& name, GroupLevel level) noexcept {
    try {
        return isValidGroupName(name.text, level);
    } catch (...) {
        return false;
    }
}

bool groupExists(const Library& library, const GroupName& name) {
    const std::vector<FileName> files = groupFiles(library);
    return std::any_of(files.begin(), files.end(),
                       [&](const FileName& file) { return file.text == name.text; });
}

bool groupExistsIgnoringCase(const Library& library, const GroupName& name,
                             const FileName& besides) {
    const std::vector<FileName> files = groupFiles(library);
    return std::any_of(files.begin(), files.end(), [&](const FileName& file) {
        return sameName(file.text, name.text) && !sameName(file.text, besides.text);
    });
}

bool subGroupExists(const Library& library, const GroupAddress& parent, const GroupName& name) {
    StorageAccess access(library);
    access.openFile(parent.file, Access::Read);
    const auto top = findTopLevelGroup(access.root(), parent.file);
    const auto groups =
        readGroups(access.root(), parent.file, top.value_or(StorageName{parent.file.text}));
    return std::any_of(groups.begin(), groups.end(), [&](const GroupEntry& group) {
        return sameName(group.parent.text, parent.storage.text) && group.name == name;
    });
}

GroupName readGroupName(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    return {readGroupText(access.groupStorage(), kNameStream).value_or(group.storage.text)};
}

StorageName readGroupParent(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    access.groupStream().emplace(access.groupStorage().OpenStream(kParentStream));
    return {access.groupStream()->GetText()};
}

DestroyedGroups destroyGroup(StorageAccess& access, const GroupAddress& group) {
    if (isTopLevel(group)) {
        throw Error(ErrorCode::InvalidName, access.file().disk().path(),
                    "the top-level group goes with its file only");
    }
    const auto top = findTopLevelGroup(access.root(), group.file);
    const auto groups =
        readGroups(access.root(), group.file, top.value_or(StorageName{group.file.text}));
    // Parents stand before their children, so one pass collects the whole subtree.
    const auto element = access.root().find(group.storage.text); // as the file spells it
    const GroupAddress first{group.file, {element->name}};
    std::set<std::u16string> doomed{first.storage.text};
    DestroyedGroups destroyed{{first}};
    std::vector<GroupAddress>& removed = destroyed.groups;
    for (const GroupEntry& entry : groups) {
        if (doomed.contains(entry.parent.text) &&
            doomed.insert(entry.address.storage.text).second) {
            removed.push_back(entry.address);
        }
    }
    std::reverse(removed.begin(), removed.end());
    for (const GroupAddress& address : removed) {
        destroyed.pictures += countUpToTwo(access.root().OpenStorage(address.storage.text));
        access.root().DestroyElement(address.storage.text);
        if (const auto info = access.root().find(infoStorageOf(address.storage).text)) {
            access.root().DestroyElement(info->name);
        }
    }
    return destroyed;
}

std::vector<GroupAddress> deleteGroup(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    DestroyedGroups destroyed = destroyGroup(access, group);
    access.Commit();
    access.CloseGaps(destroyed.pictures);
    return std::move(destroyed.groups);
}

std::filesystem::path
throwAway(const Library& library, const FileName& file,
          const std::function<std::filesystem::path(const std::filesystem::path&)>& moveToTrash) {
    const std::filesystem::path path = pathOf(library, file);
    // Whoever works on the group right now finishes first.
    const FileTurns::Turn turn = library.turns->take(path);
    const auto locked = openLocked(library.disk, path, Access::Read, library.lockWait);
    std::filesystem::path trashed;
    try {
        trashed = moveToTrash(path);
    } catch (const Error& error) {
        if (library.disk.exists(path)) {
            throw;
        }
        throw Error(ErrorCode::OutcomeUnknown, path, error.cause());
    }
    syncPlaceOf(library, path);
    return trashed;
}

void removeGroupFile(const Library& library, const FileName& file) {
    throwAway(library, file, [&](const std::filesystem::path& path) {
        library.disk.trash(path);
        return std::filesystem::path();
    });
}

GroupSize readGroupSize(const Library& library, const GroupAddress& group) {
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    GroupSize size;
    compound::ElementCursor cursor = access.groupStorage().elements();
    compound::Element element;
    while (cursor.next(element)) {
        if (element.kind != compound::ElementKind::Stream) {
            continue;
        }
        size.bytes += element.size;
        if (!isGroupText(element.name)) {
            ++size.pictures;
        }
    }
    return size;
}

} // namespace store
