// groups, new-group, rename-group, remove-group.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_operations.h"
#include "store/library_walk.h"
#include "tool/command.h"
#include "tool/folder_input.h"
#include "tool/library_arguments.h"
#include "tool/output.h"
#include "tool/terminal_progress.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

constexpr std::chrono::milliseconds kListingWait{1000}; // for all files of the library together

struct ListedGroup {
    store::GroupEntry entry;
    std::optional<store::GroupSize> size;
};

struct ListedFile {
    std::vector<ListedGroup> groups;
    std::vector<Error> failures;
};

// One file, or one group in it, that cannot be read does not hide the others. Whether all was
// there.
bool listFile(const store::Library& library, const store::FileName& file,
              const store::LockBudget& budget, ListedFile& listed) {
    store::GroupFileReading reading = store::readGroupFile(library, file, budget);
    bool isThere = !reading.isGone();
    if (reading.failure) {
        listed.failures.push_back(*reading.failure);
    }
    for (store::GroupEntry& group : reading.groups) {
        std::optional<store::GroupSize> size;
        try {
            size = store::readGroupSize(library, group.address);
        } catch (const Error& error) {
            listed.failures.push_back(error);
            if (error.code() != ErrorCode::Damaged && error.code() != ErrorCode::NotFound) {
                return isThere; // it is the file that cannot be read
            }
            isThere = isThere && error.code() == ErrorCode::Damaged;
        }
        listed.groups.push_back({std::move(group), size});
    }
    return isThere;
}

void addGroupRow(Table& table, const store::GroupEntry& group,
                 const std::optional<store::GroupSize>& size) {
    const Cell parent = group.parent.text.empty()
                            ? Cell::missing()
                            : Cell::text(store::keyOf({group.address.file, group.parent}));
    table.addRow({Cell::text(store::keyOf(group.address)), Cell::text(group.name.text), parent,
                  size ? Cell::number(std::uint64_t{size->pictures}) : Cell::missing(),
                  size ? Cell::number(size->bytes) : Cell::missing()});
}

void refuseTakenName(const store::Library& library,
                     const std::optional<store::GroupAddress>& parent,
                     const store::GroupName& name) {
    const bool isTaken = parent ? store::subGroupExists(library, *parent, name)
                                : store::groupExistsIgnoringCase(library, name);
    if (isTaken) {
        throw Error(ErrorCode::Exists,
                    parent ? store::pathOf(library, parent->file) : library.folder,
                    "there is a group \"" + base::toUtf8(name.text) + "\" already");
    }
}

// The group as the list has it: its own texts may be missing, or name no parent that is there.
std::optional<store::GroupEntry> listedGroup(const store::Library& library,
                                             const store::GroupAddress& group) {
    store::GroupFileReading reading =
        store::readGroupFile(library, group.file, store::LockBudget(library.lockWait));
    const auto found = std::find_if(
        reading.groups.begin(), reading.groups.end(), [&](const store::GroupEntry& entry) {
            return store::sameName(entry.address.storage.text, group.storage.text);
        });
    return found == reading.groups.end() ? std::nullopt : std::optional(std::move(*found));
}

} // namespace

void printKey(const Invocation& invocation, const store::GroupAddress& group) {
    Table table({"key"});
    table.addRow({Cell::text(store::keyOf(group))});
    table.printOne(invocation.console.out, invocation.arguments);
}

ExitStatus listGroups(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::LockBudget budget(kListingWait);
    Table table({"key", "name", "parent", "pictures", "bytes"});
    ExitStatus status = ExitStatus::Done;
    const auto files = store::readEachGroupFile<ListedFile>(
        library, [&](const store::FileName& file, std::size_t, ListedFile& listed) {
            return listFile(library, file, budget, listed);
        });
    for (const ListedFile& file : files) {
        for (const ListedGroup& group : file.groups) {
            addGroupRow(table, group.entry, group.size);
        }
        for (const Error& failure : file.failures) {
            complain(invocation.console, failure.what());
            status = ExitStatus::Failed;
        }
    }
    table.print(invocation.console.out, invocation.arguments);
    return status;
}

ExitStatus newGroup(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupName name{base::fromUtf8(invocation.argument(0))};
    std::optional<store::GroupAddress> parent;
    if (invocation.arguments.has(Option::Below)) {
        parent = groupOf(library, invocation.arguments.valueOf(Option::Below));
    }
    refuseTakenName(library, parent, name);
    if (!invocation.arguments.has(Option::Folder)) {
        printKey(invocation, store::createGroup(library, parent, name));
        return ExitStatus::Done;
    }
    const auto files = picturesOfFolder(invocation.arguments.valueOf(Option::Folder));
    store::FilesAdded added;
    {
        TerminalProgress progress(invocation.console, "adding");
        added =
            store::createGroupFromFiles(library, parent, name, files, reservedNames(), progress);
    }
    printKey(invocation, added.group);
    return tellSkipped(added, invocation.console);
}

ExitStatus renameGroup(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    const store::GroupName name{base::fromUtf8(invocation.argument(1))};
    if (store::isTopLevel(group)) {
        printKey(invocation, store::topLevelAddress(store::renameGroup(library, group, name).text));
        return ExitStatus::Done;
    }
    const std::optional<store::GroupEntry> entry = listedGroup(library, group);
    if (entry && entry->name != name) {
        refuseTakenName(library, store::GroupAddress{group.file, entry->parent}, name);
    }
    store::renameGroup(library, group, name);
    printKey(invocation, group);
    return ExitStatus::Done;
}

ExitStatus removeGroup(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    if (store::isTopLevel(group)) {
        store::removeGroupFile(library, group.file);
    } else {
        store::deleteGroup(library, group);
    }
    return ExitStatus::Done;
}

} // namespace tool
