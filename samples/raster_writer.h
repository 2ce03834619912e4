#pragma once

#include "raster.h"

#include <QByteArray>
#include <QImage>
#include <QPoint>

#include <vector>

/// Picture files for which the toolkit has no writer, or none that writes these variants.
namespace samples {

/// A BMP with 24 bits a pixel.
QByteArray trueColourBmp(const QImage& picture);

/// A BMP with a palette: 4 bits a pixel for up to 16 colours, 8 for more.
QByteArray paletteBmp(const IndexedPicture& picture);

/// An icon with one frame of 32 bits a pixel for each picture, sides up to 255 pixels.
QByteArray iconOf(const std::vector<QImage>& pictures);

/// A cursor of one frame, sides up to 255 pixels.
QByteArray cursorOf(const QImage& picture, QPoint hotSpot);

/// A GIF of one interlaced frame. Throws std::runtime_error when giflib refuses.
QByteArray gifOf(const IndexedPicture& picture);

/// A JPEG of that quality (0 to 100). Throws std::runtime_error when the toolkit refuses.
QByteArray jpgOf(const QImage& picture, int quality);

} // namespace samples
