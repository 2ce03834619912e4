// How the user wants to see a group's pictures, from one run to the next: a settings section of its
// own.
#pragma once

#include "browser/picture_list.h"

#include <array>

namespace browser {

// The sizes of the thumbnails that there are: pixels, of their cells' sides.
inline constexpr std::array kThumbnailSides{40, 60, 80, 110, 150, 200, 256};
inline constexpr int kDefaultThumbnailSide = 60;

// The size that many steps further, smaller if negative, as far as there is one.
int sideBeside(int side, int steps);

struct ViewChoices {
    ListOrder order = {};
    int thumbnailSide = kDefaultThumbnailSide; // one of these
    bool hasNames = false;                     // below the thumbnails

    bool operator==(const ViewChoices&) const = default;
};

// What makes no sense counts as never chosen.
ViewChoices readViewChoices();
void writeViewChoices(
    const ViewChoices& choices); // throws compound::Error naming the settings file

} // namespace browser
