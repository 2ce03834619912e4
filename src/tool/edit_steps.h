// The editor's operations as options of a command line.
#pragma once

#include "imaging/operations/edits.h"
#include "tool/arguments.h"

#include <vector>

namespace tool {

// In the order given. UsageError for amounts out of range, and for --grow or --fill without a
// --rotate before: they belong to that one.
std::vector<imaging::operations::Edit> editSteps(const Arguments& arguments);

} // namespace tool
