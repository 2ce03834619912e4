#include "tool/usage.h"

#include "tool/command.h"

#include <ostream>

namespace tool {

void printHelp(std::ostream& out) {
    out << "usage: stgtool COMMAND ARGUMENT... [--library DIR] [--json]\n\n"
           "Works on a picture library: a folder of group files (*.stg).\n\n";
    for (const Command& command : commands()) {
        out << "  " << command.name << ' ' << command.synopsis << "\n      " << command.purpose
            << "\n";
    }
    out << "\n"
           "  --library DIR   the library's folder (default: the one of the settings)\n"
           "  --json          print JSON instead of tab-separated lines\n"
           "  --replace       overwrite a picture or an output file that is there already\n"
           "  --              ends the options; what follows may begin with a hyphen\n"
           "\n"
           "convert writes .bmp, .gif, .jpg, .ico, .cur and .emf files. Its operations are done in "
           "the\n"
           "order given, any number of times:\n"
           "\n"
           "  --flip, --reverse    mirror top to bottom, left to right\n"
           "  --rotate DEGREES     turn clockwise; then --grow to keep the corners, and\n"
           "    --fill RRGGBB      the colour of uncovered places (default: black)\n"
           "  --hue N              turn by hundredths of a degree, -18000 to 18000\n"
           "  --saturation N, --contrast N, --intensity N\n"
           "                       change by thousandths, -1000 to 1000\n"
           "  --invert             the opposite colours\n"
           "\n"
           "KEY is S/T: the group's storage S in the group file T.stg; T alone names the file's\n"
           "top-level group. A picture is called like its file up to the first \".\" unless "
           "--name\n"
           "says otherwise; with --folder DIR, which takes .bmp .gif .jpg .wmf .emf .ico and .cur\n"
           "files, like its file without the last four characters. export names the group after\n"
           "FILE. In tab-separated lines a missing value is -, and backslashes and\n"
           "control characters are written as \\\\, \\t, \\n, \\r and \\xHH. Sizes are pixels.\n"
           "\n"
           "Exit status: 0 done, 1 failed or something found, 2 wrong usage.\n";
}

void printVersion(std::ostream& out) {
    out << "stgtool " TXS_VERSION "\n";
}

} // namespace tool
