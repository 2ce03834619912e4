// A picture with what belongs to its pixels, and the steps that change both.
#pragma once

#include "imaging/operations/colour_operations.h"
#include "imaging/operations/rotation.h"

#include <QImage>
#include <QPoint>

#include <variant>

namespace imaging::operations {

struct EditedPicture {
    QImage image;
    QPoint hotSpot; // of a cursor, in pixels; stays on its pixel of the picture
};

struct Flip {};    // top to bottom
struct Reverse {}; // left to right
struct Inversion {};

using Edit = std::variant<Flip, Reverse, Rotation, ColourChange, Inversion>;

// Throws as the operation does; the picture is as it was then.
void apply(const Edit& edit, EditedPicture& picture);

} // namespace imaging::operations
