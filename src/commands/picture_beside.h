// Which picture the window goes on with when others are gone.
#pragma once

#include "store/library.h"

#include <optional>
#include <vector>

namespace commands {

// The next one behind the shown one that does not go, or else the last one before it; nothing when
// none is left. Reads the group before they go.
std::optional<store::PictureName> besideThese(const store::Library& library,
                                              const store::GroupAddress& group,
                                              const std::vector<store::PictureName>& gone,
                                              const store::PictureName& shown);

} // namespace commands
