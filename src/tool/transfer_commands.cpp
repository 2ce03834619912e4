// import and export: group files that come into the library, and groups that leave it as files.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_import.h"
#include "store/names.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/terminal_progress.h"

#include <filesystem>

namespace tool {
namespace {

// A folder takes the file under the group's own name. In a file from elsewhere that may be
// anything, a way out of the folder too.
std::filesystem::path exportFile(const store::Library& library, const store::GroupAddress& group,
                                 const std::filesystem::path& target) {
    std::error_code ignored;
    if (!std::filesystem::is_directory(target, ignored)) {
        return target;
    }
    const std::u16string name =
        store::isTopLevel(group) ? group.file.text : store::readGroupName(library, group).text;
    if (!store::isValidGroupName(name, store::GroupLevel::TopLevel)) {
        throw compound::Error(compound::ErrorCode::InvalidName, store::pathOf(library, group.file),
                              "\"" + base::toUtf8(name) +
                                  "\" is no name for a group file; name the file to be written");
    }
    return target / base::toPath(name + std::u16string(store::kGroupFileSuffix));
}

} // namespace

ExitStatus importGroup(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const std::filesystem::path source = invocation.argument(0);
    TerminalProgress progress(invocation.console, "importing", TerminalProgress::Counts::Bytes);
    if (!invocation.arguments.has(Option::Below)) {
        printKey(invocation, store::importGroupFile(library, source, progress));
        return ExitStatus::Done;
    }
    const store::GroupAddress below = groupOf(library, invocation.arguments.valueOf(Option::Below));
    const store::MergedGroup merged = store::mergeGroupFile(library, below, source, progress);
    if (merged.sourceFailure) {
        complain(invocation.console, "merged, and left as it was: " + source.string() + ": " +
                                         merged.sourceFailure->cause());
    }
    printKey(invocation, merged.group);
    return ExitStatus::Done;
}

ExitStatus exportGroup(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    const auto file = exportFile(library, group, invocation.argument(1));
    TerminalProgress progress(invocation.console, "exporting", TerminalProgress::Counts::Bytes);
    store::exportGroup(library, group, file,
                       invocation.arguments.has(Option::Replace) ? store::IfTaken::Replace
                                                                 : store::IfTaken::Refuse,
                       progress);
    return ExitStatus::Done;
}

} // namespace tool
