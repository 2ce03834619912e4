#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_import.h"
#include "store/group_passage.h"
#include "store/new_group_file.h"
#include "store/storage_access.h"
#include "store/told_copying.h"

#include <memory>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

std::u16string exportedName(const std::filesystem::path& file) {
    const std::u16string fileName = base::fromPath(file.filename());
    if (!endsWithIgnoringCase(fileName, kGroupFileSuffix)) {
        throw Error(ErrorCode::InvalidName, file, "a group file's name ends in \".stg\"");
    }
    std::u16string name(cutAtFirstDot(fileName));
    if (!isValidGroupName(name, GroupLevel::TopLevel)) {
        throw Error(ErrorCode::InvalidName, file,
                    "\"" + base::toUtf8(name) + "\" cannot be a group's name");
    }
    return name;
}

// The file that is to be replaced, locked so that nobody is working on it; null when there is none.
std::unique_ptr<compound::DiskFile>
lockReplaced(const Library& library, const std::filesystem::path& file, IfTaken ifTaken) {
    if (!library.disk.exists(file)) {
        return nullptr;
    }
    if (ifTaken == IfTaken::Refuse) {
        throw Error(ErrorCode::Exists, file, "the file exists already");
    }
    try { // for writing, where that is allowed, so that it can be retired afterwards
        return openLocked(library.disk, file, Access::ReadWrite, library.lockWait);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Denied) {
            throw;
        }
    }
    return openLocked(library.disk, file, Access::Read, library.lockWait);
}

} // namespace

void writeGroupInto(NewGroupFile& content, StorageAccess& access, const GroupAddress& group,
                    const std::u16string& name, Progress& progress) {
    const auto top = access.root().find(group.storage.text); // as the file spells it
    const PassingGroups groups = passingGroups(access.root(), group.file, {top->name});
    ToldCopying copying(access.file(), progress);
    content.write([&](compound::CompoundFile& to) {
        const auto passages =
            planPassages(groups, StorageHandle(to.root()), {name, std::u16string(kNoParent)});
        copyPassages(passages, access.file(), to, copying.copied());
        const StorageHandle root(to.root());
        writeGroupText(root.OpenStorage(name), kNameStream, name);
        if (!root.find(infoStorageOf({name}).text)) {
            StorageHandle(to.root()).CreateStorage(infoStorageOf({name}).text);
        }
        copying.end();
    });
}

void exportGroup(const Library& library, const GroupAddress& group,
                 const std::filesystem::path& file, IfTaken ifTaken, Progress& progress) {
    const std::u16string name = exportedName(file);
    if (library.disk.isSameFile(pathOf(library, group.file), file)) {
        throw Error(ErrorCode::SameFile, file, "it is the group's own file");
    }
    const auto replaced = lockReplaced(library, file, ifTaken);
    StorageAccess access(library);
    access.openGroup(group, Access::Read);
    NewGroupFile content(library, library.disk.resolved(file), NewGroupFile::Content::Fresh);
    writeGroupInto(content, access, group, name, progress);
    if (replaced) {
        content.publishReplacing();
        replaced->retire();
    } else {
        content.publish();
    }
}

} // namespace store
