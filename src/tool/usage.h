// What --help and --version print.
#pragma once

#include <iosfwd>

namespace tool {

void printHelp(std::ostream& out);
void printVersion(std::ostream& out);

} // namespace tool
