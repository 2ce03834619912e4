#include "store/group_trash.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/damage.h"
#include "store/fitting_names.h"
#include "store/group_passage.h"
#include "store/steps.h"
#include "store/storage_access.h"
#include "store/told_copying.h"

#include <set>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

constexpr std::chrono::milliseconds kCountingWait{300};

// What the group is called in a file of its own: no name that one of the groups below it may bear.
std::u16string nameInTrash(const GroupName& name) {
    std::u16string fitting = fittingGroupName(name.text).text;
    return storageNumber(fitting) > 0 ? fitting + u'_' : fitting;
}

StorageName parentOf(StorageAccess& access, const GroupAddress& group) {
    const auto top = findTopLevelGroup(access.root(), group.file);
    for (const GroupEntry& entry :
         readGroups(access.root(), group.file, top.value_or(StorageName{group.file.text}))) {
        if (sameName(entry.address.storage.text, group.storage.text)) {
            return entry.parent;
        }
    }
    return {group.file.text};
}

// Writes the group as a file of its own and moves it to the trash; an empty path when the trash
// does not tell where it is, or the group is damaged: what cannot be kept must not keep the group.
std::filesystem::path fileInTrash(const Library& library, StorageAccess& access,
                                  const GroupAddress& group, const GroupName& groupName,
                                  compound::Trash& trash, Progress& progress) {
    const std::u16string name = nameInTrash(groupName);
    const std::filesystem::path file =
        trash.stagingFolder() / base::toPath(name + std::u16string(kGroupFileSuffix));
    try {
        const auto isWritten = unlessDamaged([&] {
            NewGroupFile content(library, file, NewGroupFile::Content::Fresh);
            writeGroupInto(content, access, group, name, progress);
            content.publish();
            return true;
        });
        return isWritten ? trash.moveThere(file) : std::filesystem::path();
    } catch (const Error& failure) {
        const bool isOfGroup = failure.file() == access.file().disk().path();
        if (isOfGroup || failure.code() == ErrorCode::Cancelled) {
            throw;
        }
        throw compound::TrashFailure(failure);
    }
}

TrashedGroup trashSubGroup(const Library& library, const GroupAddress& group,
                           compound::Trash& trash, Progress& progress) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    TrashedGroup trashed{group, parentOf(access, group), {}, {}};
    trashed.name.text =
        readGroupText(access.groupStorage(), kNameStream).value_or(group.storage.text);
    trashed.file = fileInTrash(library, access, group, trashed.name, trash, progress);
    trashed.state = stateInTrash(library.disk, trashed.file);
    try {
        const DestroyedGroups destroyed = destroyGroup(access, group);
        access.Commit();
        access.CloseGaps(destroyed.pictures);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::OutcomeUnknown && !trashed.file.empty()) {
            removeFromTrash(library.disk, trash, trashed.file);
        }
        throw;
    }
    return trashed;
}

GroupAddress restoreGroupFile(const Library& library, const TrashedGroup& group,
                              compound::Trash& trash) {
    const GroupName name{group.address.file.text};
    if (groupExistsIgnoringCase(library, name)) {
        throw Error(ErrorCode::Exists, pathOf(library, group.address.file),
                    "the group exists already");
    }
    trash.takeBack(group.file, plainPathOf(library, group.address.file));
    return group.address;
}

// The old storage of a group that comes back, or a further one when that is taken. Never one called
// like the group, whose name may end as those of info storages do.
StorageName freeStorage(const StorageHandle& root, const StorageName& old) {
    const bool isTaken = root.find(old.text) || root.find(infoStorageOf(old).text);
    return isTaken ? nextSubGroup(root) : old;
}

} // namespace

std::size_t countGroupsBelow(const Library& library, const GroupAddress& group) {
    const auto reading = readGroupFile(library, group.file, LockBudget(kCountingWait));
    std::set<std::u16string, ByName> below{group.storage.text};
    for (const GroupEntry& entry : reading.groups) {
        if (below.contains(entry.parent.text)) {
            below.insert(entry.address.storage.text);
        }
    }
    return below.size() - 1;
}

TrashedGroup trashGroup(const Library& library, const GroupAddress& group, compound::Trash& trash,
                        Progress& progress) {
    if (isTopLevel(group)) {
        const std::filesystem::path file =
            throwAway(library, group.file, [&](const auto& path) { return trash.moveThere(path); });
        return {group, {}, {group.file.text}, file, stateInTrash(library.disk, file)};
    }
    return trashSubGroup(library, group, trash, progress);
}

GroupAddress restoreGroup(const Library& library, const TrashedGroup& group, compound::Trash& trash,
                          Progress& progress) {
    requireInTrash(library.disk, group.file, group.state);
    if (isTopLevel(group.address)) {
        return restoreGroupFile(library, group, trash);
    }
    StorageAccess into(library);
    into.openGroup({group.address.file, group.parent}, Access::ReadWrite);
    StorageAccess from(library);
    from.openFile(group.file, Access::Read, library.lockWait);
    const StorageName source{nameInTrash(group.name)};
    const auto groups = passingGroups(from.root(), FileName{source.text}, source);
    const std::u16string parent = parentText(into.root(), group.parent, into.file().disk().path());
    const std::u16string top = freeStorage(into.root(), group.address.storage).text;
    const auto passages = planPassages(groups, into.root(), {top, parent, 0});
    ToldCopying copying(from.file(), progress);
    copyPassages(passages, from.file(), into.file(), copying.copied());
    writeGroupText(into.root().OpenStorage(top), kNameStream, group.name.text);
    copying.end();
    into.Commit();
    from.release();
    removeFromTrash(library.disk, trash, group.file);
    return {group.address.file, {top}};
}

} // namespace store
