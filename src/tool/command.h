// The commands of stgtool: a table of names and functions, and what each function is given.
#pragma once

#include "store/address.h"
#include "tool/arguments.h"

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

enum class ErrorStream { Terminal, Elsewhere };

// Where a command's output goes. Errors and progress never mix with `out`.
struct Console {
    std::ostream& out;
    std::ostream& err;
    ErrorStream errorStream = ErrorStream::Elsewhere; // progress is shown on a terminal only
};

struct Invocation {
    const Arguments& arguments;
    Console& console;

    // The command's `index`th argument, counted from 0.
    const std::string& argument(std::size_t index) const { return arguments.words[index + 1]; }
};

inline constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

struct Command {
    std::string_view name;
    std::string_view synopsis; // its arguments as --help shows them
    std::string_view purpose;
    std::size_t fewest; // arguments
    std::size_t most;
    std::vector<Option> options; // besides those that every command takes
    ExitStatus (*run)(const Invocation&);
};

std::span<const Command> commands();

ExitStatus listGroups(const Invocation& invocation);
ExitStatus listPictures(const Invocation& invocation);
ExitStatus newGroup(const Invocation& invocation);
ExitStatus renameGroup(const Invocation& invocation);
ExitStatus removeGroup(const Invocation& invocation);
ExitStatus addPictures(const Invocation& invocation);
ExitStatus extractPicture(const Invocation& invocation);
ExitStatus renamePicture(const Invocation& invocation);
ExitStatus removePicture(const Invocation& invocation);
ExitStatus importGroup(const Invocation& invocation);
ExitStatus exportGroup(const Invocation& invocation);
ExitStatus checkFiles(const Invocation& invocation);
ExitStatus compactFile(const Invocation& invocation);
ExitStatus renderPicture(const Invocation& invocation);
ExitStatus makeThumbnail(const Invocation& invocation);
ExitStatus convertPicture(const Invocation& invocation);
ExitStatus printCatalogue(const Invocation& invocation);
ExitStatus listDuplicates(const Invocation& invocation);

// Runs one command line (without the program's name). Everything that goes wrong is told on
// console.err, naming the file and the cause; nothing is thrown.
ExitStatus run(std::span<const std::string> commandLine, Console& console) noexcept;

// Prints the key of a group that was made, renamed or imported.
void printKey(const Invocation& invocation, const store::GroupAddress& group);

// Writes "stgtool: TEXT" as one line, with control characters made visible.
void complain(Console& console, std::string_view text);

} // namespace tool
