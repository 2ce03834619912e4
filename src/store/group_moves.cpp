// Operations that put a complete new file beside the old one: renaming a top-level group and
// compacting. At no instant is the group's content without a durable file.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_layout.h"
#include "store/group_operations.h"
#include "store/leftovers.h"
#include "store/new_group_file.h"
#include "store/told_copying.h"

#include <algorithm>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

// Copies everything from one file to another, telling how far it is.
void copyTold(compound::CompoundFile& from, compound::CompoundFile& to, Progress& progress) {
    ToldCopying copying(from, progress);
    compound::copyAll(from, to, copying.copied());
    copying.end();
}

// The group's own storages may take each other's places; nothing else in the file makes way.
void refuseTakenStorages(StorageAccess& access, const StorageName& from, const std::u16string& to) {
    for (const std::u16string& name : {to, infoStorageOf({to}).text}) {
        const auto found = access.root().find(name);
        if (found && !sameName(found->name, from.text) &&
            !sameName(found->name, infoStorageOf(from).text)) {
            throw Error(ErrorCode::Exists, access.file().disk().path(),
                        "the file holds \"" + base::toUtf8(found->name) + "\" already");
        }
    }
}

void renamePair(StorageHandle root, const StorageName& from, const std::u16string& to) {
    const std::u16string info = infoStorageOf(from).text;
    const auto renameInfo = [&] {
        if (root.find(info)) {
            root.RenameElement(info, infoStorageOf({to}).text);
        }
    };
    // "Pumps" that becomes "PumpsInfo", or the other way round: the storage in the way goes first.
    if (sameName(to, info)) {
        renameInfo();
        root.RenameElement(from.text, to);
    } else {
        root.RenameElement(from.text, to);
        renameInfo();
    }
}

// Renames a storage's pair and its `Name`; the links of the groups below it follow.
void renameTopLevelPair(StorageHandle root, const StorageName& from, const std::u16string& to) {
    for (const std::u16string& storage : rootStorages(root)) {
        if (sameName(storage, from.text) || endsWithIgnoringCase(storage, kInfoSuffix)) {
            continue;
        }
        const StorageHandle group = root.OpenStorage(storage);
        const auto parent = readGroupText(group, kParentStream);
        if (parent && sameName(*parent, from.text)) {
            writeGroupText(group, kParentStream, to);
        }
    }
    renamePair(root, from, to);
    writeGroupText(root.OpenStorage(to), kNameStream, to);
}

void refuseTakenName(const Library& library, const GroupAddress& group, const GroupName& newName) {
    for (const FileName& file : groupFiles(library)) {
        if (file != group.file && sameName(file.text, newName.text)) {
            throw Error(ErrorCode::Exists, pathOf(library, file), "the group exists already");
        }
    }
}

// Where a group's file is and where it goes. Behind a link the file lies elsewhere and stays there,
// under the new name; the link's place is taken by one of the new name.
struct Move {
    std::filesystem::path from, to;         // in the library
    std::filesystem::path fromFile, toFile; // the same, unless they are links

    bool isLinked() const { return from != fromFile; }
};

Move moveOf(const Library& library, const FileName& file, const GroupName& newName) {
    Move move;
    move.from = pathOf(library, file);
    move.to = plainPathOf(library, {newName.text});
    move.fromFile = library.disk.resolved(move.from);
    move.toFile = move.isLinked() ? folderOf(move.fromFile) / move.to.filename() : move.to;
    return move;
}

// Once the link has gone, the library has the group under its new name only; what keeps the file
// that the link led to must not undo that.
void removeOld(const Library& library, const Move& move) {
    library.disk.removeTemporary(move.from);
    if (!move.isLinked()) {
        return;
    }
    try {
        library.disk.removeTemporary(move.fromFile);
    } catch (const Error&) {
        return;
    }
}

void removeNew(const Library& library, const Move& move) {
    if (move.isLinked()) {
        library.disk.removeTemporary(move.to);
    }
    library.disk.removeTemporary(move.toFile);
    syncPlaceOf(library, move.to); // before the record goes
}

// For writing, where that is allowed, so that the file can be retired afterwards.
void openToMove(StorageAccess& access, const GroupAddress& group) {
    try {
        access.openGroup(group, Access::ReadWrite);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Denied) {
            throw;
        }
        access.openGroup(group, Access::Read);
    }
}

GroupName renameTopLevelGroup(const Library& library, const GroupAddress& group,
                              const GroupName& newName, Progress& progress) {
    (void)groupFiles(library); // what a crash has left of it goes while nobody holds the file
    StorageAccess old(library);
    openToMove(old, group); // a vanished group is found out here
    refuseTakenName(library, group, newName);
    const Move move = moveOf(library, group.file, newName);
    if (move.from == move.to) {
        return newName;
    }
    refuseTakenStorages(old, group.storage, newName.text);
    NewGroupFile file(library, move.toFile, NewGroupFile::Content::Copied);
    file.write([&](compound::CompoundFile& content) {
        copyTold(old.file(), content, progress);
        renameTopLevelPair(StorageHandle(content.root()), group.storage, newName.text);
    });
    file.takeAttributes(old.file().disk());
    const MoveRecord record(library, old.file().disk(), group.file, file.temporary(),
                            {newName.text});
    if (move.isLinked() && library.disk.exists(move.to)) {
        throw Error(ErrorCode::Exists, move.to, "the file exists");
    }
    try {
        file.publish();
        if (move.isLinked()) {
            library.disk.linkAs(move.from, move.toFile, move.to);
            library.disk.syncFolder(library.folder);
        }
        removeOld(library, move);
    } catch (const Error&) {
        // The group keeps its old name, and is there once.
        if (file.isPublished()) {
            removeNew(library, move);
        }
        throw;
    }
    syncPlaceOf(library, move.to);
    old.file().disk().retire(); // not before no power cut can bring its name back
    return newName;
}

GroupName renameSubGroup(const Library& library, const GroupAddress& group,
                         const GroupName& newName) {
    StorageAccess access(library);
    access.openGroup(group, Access::ReadWrite);
    writeGroupText(access.groupStorage(), kNameStream, newName.text);
    access.Commit();
    return newName;
}

} // namespace

GroupName renameGroup(const Library& library, const GroupAddress& group, const GroupName& newName,
                      Progress& progress) {
    const GroupLevel level = isTopLevel(group) ? GroupLevel::TopLevel : GroupLevel::SubGroup;
    if (!isValidGroupName(newName.text, level)) {
        throw Error(ErrorCode::InvalidName, pathOf(library, group.file),
                    "\"" + base::toUtf8(newName.text) + "\" cannot be a group's name");
    }
    return level == GroupLevel::TopLevel ? renameTopLevelGroup(library, group, newName, progress)
                                         : renameSubGroup(library, group, newName);
}

void compactGroupFile(const Library& library, const std::filesystem::path& path,
                      Progress& progress) {
    StorageAccess old(library);
    old.openFile(path, Access::ReadWrite, library.lockWait);
    NewGroupFile file(library, library.disk.resolved(path), NewGroupFile::Content::Copied,
                      old.file().sectorSize());
    file.write([&](compound::CompoundFile& content) { copyTold(old.file(), content, progress); });
    file.takeAttributes(old.file().disk());
    file.prepare();
    if (file.size() > old.file().disk().size() && old.file().check().empty()) {
        return; // another program's file, as dense as can be and without a reserve
    }
    file.publishReplacing();
    old.file().disk().retire();
}

} // namespace store
