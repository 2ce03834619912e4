// Walks a whole compound file and names everything that is wrong with it.
#pragma once

#include "compound/compound_file.h"

#include <vector>

namespace compound {

std::vector<Finding> checkFile(FileState& file);

} // namespace compound
