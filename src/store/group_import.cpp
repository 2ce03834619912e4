#include "store/group_import.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_passage.h"
#include "store/merged_source.h"
#include "store/new_group_file.h"
#include "store/storage_access.h"
#include "store/text_codec.h"
#include "store/told_copying.h"

#include <algorithm>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;

// What an imported file's group is called: the file's name up to its first ".".
GroupName importedName(const std::filesystem::path& source) {
    return {std::u16string(cutAtFirstDot(base::fromPath(source.filename())))};
}

Error noGroupName(const std::filesystem::path& source, const GroupName& name) {
    return {ErrorCode::InvalidName, source,
            "\"" + base::toUtf8(name.text) + "\" cannot be a group's name"};
}

void refuseTaken(const Library& library, const GroupName& name) {
    if (groupExistsIgnoringCase(library, name)) {
        throw Error(ErrorCode::Exists, pathOf(library, {name.text}), "the group exists already");
    }
}

// A group directly below the target that bears the name.
void refuseTakenBelow(StorageAccess& access, const GroupAddress& target, const GroupName& name) {
    const auto top = findTopLevelGroup(access.root(), target.file);
    const auto groups =
        readGroups(access.root(), target.file, top.value_or(StorageName{target.file.text}));
    const bool isTaken = std::any_of(groups.begin(), groups.end(), [&](const GroupEntry& group) {
        return sameName(group.parent.text, target.storage.text) &&
               sameName(group.name.text, name.text);
    });
    if (isTaken) {
        throw Error(ErrorCode::Exists, access.file().disk().path(),
                    "there is a group \"" + base::toUtf8(name.text) + "\" already");
    }
}

// One merge: both files open and locked.
class Merge {
  public:
    Merge(const Library& library, const GroupAddress& target, std::filesystem::path source)
        : library_(library),
          target_(target),
          path_(std::move(source)),
          name_(importedName(path_)),
          from_(library),
          into_(library) {
        open();
        groups_ = passingGroups(from_.root(), path_);
        refuseTakenBelow(into_, target_, name_);
        // A name that the file could not hold at all is left out: see run().
        if (encodeText(name_.text) && !isValidGroupName(name_.text, GroupLevel::SubGroup)) {
            throw noGroupName(path_, name_);
        }
    }

    MergedGroup run(Progress& progress) {
        const std::filesystem::path file = into_.file().disk().path();
        const std::uint32_t shift = freeShift(groups_, from_.root(), into_.root(), file);
        const std::u16string top = numberedStorage(shift);
        const auto passages = planPassages(
            groups_, into_.root(), {top, parentText(into_.root(), target_.storage, file), shift});
        ToldCopying copying(from_.file(), progress);
        copyPassages(passages, from_.file(), into_.file(), copying.copied());
        if (encodeText(name_.text)) {
            writeGroupText(into_.root().OpenStorage(top), kNameStream, name_.text);
        }
        copying.end();
        into_.Commit();
        into_.release();
        MergedGroup merged;
        merged.group = {target_.file, {top}};
        if (access_ == Access::ReadWrite && groups_.renumberedBy == 0) {
            finishSource(passages, merged);
        }
        return merged;
    }

  private:
    // In an order that depends on the files alone, so that no two merges wait for each other.
    void open() {
        const Access wanted = belongsToLibrary(library_, path_) ? Access::Read : Access::ReadWrite;
        const bool isSourceFirst = path_ < pathOf(library_, target_.file);
        if (isSourceFirst) {
            access_ = openSource(from_, library_, path_, wanted);
        }
        into_.openGroup(target_, Access::ReadWrite);
        if (!isSourceFirst) {
            access_ = openSource(from_, library_, path_, wanted);
        }
    }

    // The merge is the user's already: what keeps the source from being renumbered is told, and
    // undoes nothing.
    void finishSource(const std::vector<Passage>& passages, MergedGroup& merged) {
        try {
            keepAndRenumber(library_, from_, passages);
            merged.source = SourceAfterMerge::Renumbered;
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Denied) {
                merged.sourceFailure = error;
            }
        } catch (const std::exception& failure) {
            merged.sourceFailure = Error(ErrorCode::Failed, path_, failure.what());
        }
    }

    const Library& library_;
    const GroupAddress& target_;
    std::filesystem::path path_;
    GroupName name_;
    StorageAccess from_;
    StorageAccess into_;
    Access access_ = Access::Read; // to the source
    PassingGroups groups_;
};

} // namespace

GroupAddress importGroupFile(const Library& library, const std::filesystem::path& source,
                             Progress& progress) {
    GroupName name = importedName(source);
    refuseTaken(library, name);
    StorageAccess access(library);
    access.openFile(source, Access::Read, library.lockWait);
    const PassingGroups groups = passingGroups(access.root(), source);
    const bool isRenumbered = groups.renumberedBy > 0;
    if (!isRenumbered) {
        name.text = groups.top.text;
        refuseTaken(library, name);
    } else if (!isValidGroupName(name.text, GroupLevel::TopLevel)) {
        throw noGroupName(source, name);
    }
    ToldCopying copying(access.file(), progress);
    NewGroupFile file(library, plainPathOf(library, {name.text}), NewGroupFile::Content::Fresh);
    file.write([&](compound::CompoundFile& content) {
        if (isRenumbered) {
            const auto passages = planPassages(groups, StorageHandle(content.root()),
                                               {name.text, std::u16string(kNoParent)});
            copyPassages(passages, access.file(), content, copying.copied());
        } else {
            compound::copyAll(access.file(), content, copying.copied());
        }
        copying.end();
    });
    file.publish();
    return topLevelAddress(name.text);
}

MergedGroup mergeGroupFile(const Library& library, const GroupAddress& target,
                           const std::filesystem::path& source, Progress& progress) {
    if (library.disk.isSameFile(pathOf(library, target.file), source)) {
        throw Error(ErrorCode::SameFile, source, "it is the file that it is to be merged into");
    }
    return Merge(library, target, source).run(progress);
}

} // namespace store
