// duplicates: pictures that the library has twice.
#include "store/same_pictures.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/output.h"
#include "tool/terminal_progress.h"

namespace tool {

ExitStatus listDuplicates(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    std::optional<store::GroupAddress> group;
    if (invocation.arguments.words.size() > 1) {
        group = groupOf(library, invocation.argument(0));
    }
    Table table({"key", "name", "other key", "other name"});
    std::vector<std::string> unread;
    {
        TerminalProgress progress(invocation.console, "comparing", TerminalProgress::Counts::Bytes);
        for (const store::SamePictures& same : store::findSamePictures(
                 library, store::allPictures(library, group), progress,
                 [&](const compound::Error& error) { unread.emplace_back(error.what()); })) {
            for (const store::PictureAddress& other : same.others) {
                table.addRow({Cell::text(store::keyOf(same.picture.group)),
                              Cell::text(same.picture.name.text),
                              Cell::text(store::keyOf(other.group)), Cell::text(other.name.text)});
            }
        }
    }
    table.print(invocation.console.out, invocation.arguments);
    for (const std::string& failure : unread) {
        complain(invocation.console, "not compared: " + failure);
    }
    return unread.empty() ? ExitStatus::Done : ExitStatus::Failed;
}

} // namespace tool
