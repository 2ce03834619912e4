// How the user wants to see a group's pictures, from one run to the next: a settings section of its
// own.
#pragma once

#include "browser/picture_list.h"

namespace browser {

struct ViewChoices {
    ListOrder order;

    bool operator==(const ViewChoices&) const = default;
};

// What makes no sense counts as never chosen.
ViewChoices readViewChoices();
void writeViewChoices(
    const ViewChoices& choices); // throws compound::Error naming the settings file

} // namespace browser
