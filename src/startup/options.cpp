#include "startup/options.h"

#include <QString>

namespace startup {
namespace {

Options refusal(const std::string& complaint) {
    Options options;
    options.task = Options::Task::Refuse;
    options.complaint = complaint;
    return options;
}

bool isSingleDash(const std::string& argument) {
    return argument.size() > 1 && argument[0] == '-' && argument[1] != '-';
}

// Takes what is no option: the path of one group file.
void takeGroupFile(Options& options, const std::string& argument) {
    const QString suffix = QStringLiteral(".stg");
    if (!QString::fromStdString(argument).endsWith(suffix, Qt::CaseInsensitive)) {
        options = refusal("unknown argument \"" + argument + "\"");
    } else if (!options.groupFile.empty()) {
        options = refusal("only one group file can be opened at a time");
    } else {
        options.groupFile = argument;
    }
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments, SingleDash singleDash) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            options.task = Options::Task::ShowHelp;
        } else if (argument == "--version") {
            options.task = Options::Task::ShowVersion;
        } else if (argument == "--automation") {
            options.isAutomationServer = true;
        } else if (argument == "--screenshot") {
            if (i + 1 == arguments.size() || arguments[i + 1].empty()) {
                return refusal("--screenshot needs the name of a file");
            }
            options.screenshotFile = arguments[++i];
        } else if (singleDash == SingleDash::PassOver && isSingleDash(argument)) {
            // Its value, if it has one, is passed over as well.
            const bool hasValue = i + 1 < arguments.size() && arguments[i + 1].rfind('-', 0) != 0;
            i += hasValue ? 1 : 0;
        } else {
            takeGroupFile(options, argument);
        }
        if (options.task == Options::Task::Refuse) {
            return options;
        }
    }
    if (!options.groupFile.empty() &&
        (options.isAutomationServer || !options.screenshotFile.empty())) {
        return refusal("only the user's own window can import a group file");
    }
    if (options.isAutomationServer && !options.screenshotFile.empty()) {
        return refusal("--automation shows no window to save a picture of");
    }
    return options;
}

std::string helpText() {
    return "Usage: txsgraphicslib [FILE.stg | --automation | --screenshot FILE]\n"
           "\n"
           "Opens the picture library, and offers to import the group file.\n"
           "\n"
           "  --automation       show nothing, wait on the session bus for another program\n"
           "  --screenshot FILE  show the window, save its picture to FILE and end\n"
           "  -h, --help         show this text and end\n"
           "  --version          show the program's version and end\n"
           "\n"
           "TXSGRAPHICSLIB_HOME=DIR keeps settings, library and trash below DIR.\n"
           "\n"
           "Exit status: 0 done, 1 a file cannot be read or written, 2 wrong usage.\n";
}

} // namespace startup
