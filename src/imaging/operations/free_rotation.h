// Turns by any angle, with interpolation.
#pragma once

#include "imaging/operations/editable_image.h"

#include <QPoint>

namespace imaging::operations {

struct FreeTurn {
    double degrees; // clockwise
    QSize result; // of the whole turned picture's canvas, in whose middle the picture's middle lies
    QRgb fill;
    bool opaque; // fill colour and picture
};

// Sets every pixel of `target`, the part of the turned picture whose top left pixel is `topLeft`.
// `source` spans less than 2^31 pixels from its first to its last.
void copyTurnedFreely(const PixelRows<const QRgb>& source, const FreeTurn& turn,
                      const PixelRows<QRgb>& target, QPoint topLeft);

} // namespace imaging::operations
