// The editor's operations as options of a command line.
#pragma once

#include "tool/arguments.h"

#include <QImage>
#include <QPoint>

#include <vector>

namespace tool {

struct EditStep {
    Option option = Option::Flip; // an operation's
    int amount = 0;               // of --rotate in hundredths of a degree, else as typed
    bool grows = false;           // --grow and --fill belong to the --rotate before them
    QRgb fill = 0xFF000000;
};

// In the order given. UsageError for amounts out of range, and for --grow or --fill without a
// --rotate before.
std::vector<EditStep> editSteps(const Arguments& arguments);

struct EditedPicture {
    QImage image;
    QPoint hotSpot; // stays on its pixel of the picture
};

// Throws std::length_error, what() saying so, when the picture would become too large, and
// std::bad_alloc.
void apply(const EditStep& step, EditedPicture& picture);

} // namespace tool
