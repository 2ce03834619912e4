// Turns by multiples of 90 degrees, exact.
#pragma once

#include "imaging/operations/editable_image.h"

#include <QPoint>

namespace imaging::operations {

// Sets every pixel of `target`, clockwise turned by `quarters` (0 to 3) quarters: the turned
// picture's top left pixel comes to `topLeft` of the target, maybe outside of it; `fill` where it
// does not reach.
void copyTurned(const PixelRows<const QRgb>& source, int quarters, const PixelRows<QRgb>& target,
                QPoint topLeft, QRgb fill);

// Half a turn.
void turnHalfInPlace(const PixelRows<QRgb>& rows);

} // namespace imaging::operations
