#include "compound/error.h"
#include "tool/command.h"
#include "tool/output.h"
#include "tool/usage.h"

#include <algorithm>
#include <exception>
#include <new>
#include <ostream>

namespace tool {
namespace {

const Command& commandNamed(const std::string& name) {
    const std::span<const Command> all = commands();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Command& command) { return command.name == name; });
    if (found == all.end()) {
        throw UsageError("unknown command \"" + name + "\"");
    }
    return *found;
}

void refuseWrongUse(const Command& command, const Arguments& arguments) {
    const std::size_t given = arguments.words.size() - 1;
    if (given < command.fewest || given > command.most) {
        throw UsageError("usage: stgtool " + std::string(command.name) + " " +
                         std::string(command.synopsis));
    }
    for (const auto& [option, value] : arguments.options) {
        const bool isOwn = std::find(command.options.begin(), command.options.end(), option) !=
                           command.options.end();
        const bool isCommon = option == Option::Json || option == Option::Library;
        if (!isCommon && !isOwn) {
            throw UsageError(std::string(command.name) + " does not take " + textOf(option));
        }
    }
}

ExitStatus dispatch(std::span<const std::string> commandLine, Console& console) {
    const Arguments arguments = parseArguments(commandLine);
    if (arguments.has(Option::Help)) {
        printHelp(console.out);
        return ExitStatus::Done;
    }
    if (arguments.has(Option::Version)) {
        printVersion(console.out);
        return ExitStatus::Done;
    }
    if (arguments.words.empty()) {
        throw UsageError("no command");
    }
    const Command& command = commandNamed(arguments.words.front());
    refuseWrongUse(command, arguments);
    return command.run({arguments, console});
}

ExitStatus runToTheEnd(std::span<const std::string> commandLine, Console& console) {
    try {
        const ExitStatus status = dispatch(commandLine, console);
        console.out.flush();
        if (console.out) {
            return status;
        }
        complain(console, "standard output: cannot be written");
    } catch (const UsageError& error) {
        complain(console, error.what());
        console.err << "Try: stgtool --help\n";
        return ExitStatus::WrongUsage;
    } catch (const std::bad_alloc&) {
        complain(console, "out of memory");
    } catch (const compound::Error& error) {
        complain(console, error.what());
        if (error.code() == compound::ErrorCode::OutcomeUnknown) {
            complain(console, "it is unknown whether the change was saved");
        }
    } catch (const std::exception& error) {
        complain(console, error.what());
    }
    return ExitStatus::Failed;
}

} // namespace

// One table, as long as there are commands.
std::span<const Command> commands() { // NOLINT(readability-function-size)
    static const std::vector<Command> all{
        {"groups",
         "",
         "list all groups: key, name, parent's key or -, pictures, bytes",
         0,
         0,
         {},
         listGroups},
        {"pictures",
         "KEY",
         "list a group's pictures: name, bytes, height, width, type",
         1,
         1,
         {},
         listPictures},
        {"new-group",
         "NAME [--below KEY] [--folder DIR]",
         "make a group, of a folder's picture files or empty, and print its key",
         1,
         1,
         {Option::Below, Option::Folder},
         newGroup},
        {"rename-group", "KEY NEW", "rename a group and print its key", 2, 2, {}, renameGroup},
        {"remove-group",
         "KEY",
         "remove a group and those below it; a top-level group's file goes to the trash",
         1,
         1,
         {},
         removeGroup},
        {"add",
         "KEY FILE... [--name NAME] [--replace] | KEY --folder DIR [--replace]",
         "add picture files, all of them or none; or a folder's, leaving out what is no picture",
         1,
         kAnyNumber,
         {Option::Name, Option::Replace, Option::Folder},
         addPictures},
        {"extract",
         "KEY NAME FILE|- [--replace]",
         "write a picture's bytes to a file",
         3,
         3,
         {Option::Replace},
         extractPicture},
        {"rename-picture", "KEY OLD NEW", "rename a picture", 3, 3, {}, renamePicture},
        {"remove-picture", "KEY NAME", "remove a picture", 2, 2, {}, removePicture},
        {"import",
         "FILE [--below KEY]",
         "bring a group file into the library, as a top-level group or below one; print the key",
         1,
         1,
         {Option::Below},
         importGroup},
        {"export",
         "KEY FILE.stg|DIR [--replace]",
         "write a group and those below it as a group file of its own",
         2,
         2,
         {Option::Replace},
         exportGroup},
        {"check",
         "FILE...",
         "look for damage in group files: file, where, what",
         1,
         kAnyNumber,
         {},
         checkFiles},
        {"compact",
         "FILE",
         "rewrite a group file without gaps: bytes before, after",
         1,
         1,
         {},
         compactFile},
        {"render",
         "FILE OUT.png [--width N] [--height N] [--replace]",
         "write a picture file of any of the seven types as PNG, fitted into N pixels",
         2,
         2,
         {Option::Width, Option::Height, Option::Replace},
         renderPicture},
        {"thumbnail",
         "FILE.stg OUT.png [--width N] [--height N] [--replace]",
         "write the first picture of a group file as PNG, fitted into N pixels",
         2,
         2,
         {Option::Width, Option::Height, Option::Replace},
         makeThumbnail},
        {"convert",
         "IN OUT [--width N] [OPERATION...] [--replace]",
         "write a picture file of any of the seven types, edited, in the type of OUT's name",
         2,
         2,
         {Option::Width, Option::Flip, Option::Reverse, Option::Rotate, Option::Grow, Option::Fill,
          Option::Hue, Option::Saturation, Option::Contrast, Option::Intensity, Option::Invert,
          Option::Replace},
         convertPicture},
        {"catalogue",
         "KEY FILE.pdf [--sub-groups] [--paper a4|letter] [--replace]",
         "write a group's pictures with names, sizes and types on pages, as PDF",
         2,
         2,
         {Option::SubGroups, Option::Paper, Option::Replace},
         printCatalogue},
        {"duplicates",
         "[KEY]",
         "list pictures that the library has twice, byte for byte: key, name, and the other's",
         0,
         1,
         {},
         listDuplicates},
    };
    return all;
}

void complain(Console& console, std::string_view text) {
    console.err << "stgtool: " << escaped(text) << '\n';
}

ExitStatus run(std::span<const std::string> commandLine, Console& console) noexcept {
    try {
        return runToTheEnd(commandLine, console);
    } catch (...) {
        return ExitStatus::Failed; // telling the failure has failed as well
    }
}

} // namespace tool
