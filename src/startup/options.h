// The program's command line.
#pragma once

#include <string>
#include <vector>

namespace startup {

struct Options {
    enum class Task {
        Run,
        ShowHelp,
        ShowVersion,
        Refuse, // `complaint` says why
    };

    Task task = Task::Run;
    std::string screenshotFile; // empty: none wanted
    std::string groupFile;      // to be offered for import; empty: none given
    bool isAutomationServer = false;
    std::string complaint;
};

// Whether arguments with a single dash are passed over: before the toolkit has taken its own ones
// ("-platform xcb") out they cannot be judged.
enum class SingleDash { PassOver, Refuse };

// `arguments` without the program's name.
Options parseOptions(const std::vector<std::string>& arguments, SingleDash singleDash);

// What --help prints, and what the program's exit statuses mean.
std::string helpText();

} // namespace startup
