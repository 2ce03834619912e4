// catalogue: a group's pictures on pages, as PDF.
#include "app/settings.h"
#include "catalogue/catalogue.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/output_file.h"
#include "tool/terminal_progress.h"

namespace tool {
namespace {

catalogue::Paper paperOf(const Arguments& arguments) {
    if (!arguments.has(Option::Paper)) {
        return catalogue::usualPaper();
    }
    const std::string name = arguments.valueOf(Option::Paper);
    if (name != "a4" && name != "letter") {
        throw UsageError("--paper wants a4 or letter, not \"" + name + "\"");
    }
    return name == "a4" ? catalogue::Paper::A4 : catalogue::Paper::Letter;
}

} // namespace

ExitStatus printCatalogue(const Invocation& invocation) {
    app::settings().chooseLanguage(); // for the words on the pages
    const catalogue::Paper paper = paperOf(invocation.arguments);
    const store::Library library = libraryOf(invocation.arguments);
    const auto contents = catalogue::readContents(library, groupOf(library, invocation.argument(0)),
                                                  invocation.arguments.has(Option::SubGroups)
                                                      ? catalogue::SubGroups::Included
                                                      : catalogue::SubGroups::LeftOut);
    catalogue::Printed printed;
    {
        TerminalProgress progress(invocation.console, "printing", TerminalProgress::Counts::Bytes);
        printed =
            writeOutput(invocation.argument(1), invocation, [&](platform::IfFileExists taken) {
                return catalogue::writePdf(library, contents, paper, invocation.argument(1), taken,
                                           progress);
            });
    }
    for (const catalogue::Unshown& unshown : printed.unshown) {
        complain(invocation.console, "not shown: " + unshown.groupPath.toStdString() + ", " +
                                         unshown.picture.toStdString() + ": " +
                                         unshown.failure.what());
    }
    return printed.unshown.empty() ? ExitStatus::Done : ExitStatus::Failed;
}

} // namespace tool
