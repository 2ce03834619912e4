#pragma once

#include "shapes.h"

#include <QImage>

#include <vector>

namespace samples {

/// The drawing fitted into a picture of that size, smooth edges, the rest transparent.
/// Format_ARGB32, not premultiplied.
QImage rendered(const Drawing& drawing, QSize pixels);

/// The picture on a plain ground, opaque; Format_RGB32.
QImage onGround(const QImage& picture, const QColor& ground);

/// A picture in at most 256 colours.
struct IndexedPicture {
    QSize size;
    std::vector<QRgb> palette;         ///< opaque colours
    std::vector<unsigned char> pixels; ///< row by row from the top, indices into the palette
    int transparent = -1;              ///< the palette's index for "nothing here", or -1
};

/// The picture in its most frequent colours. With room for transparency, pixels less than half
/// opaque get an index of their own and the others stand on white.
enum class Transparency { None, OneIndex };
IndexedPicture reduced(const QImage& picture, int colours, Transparency transparency);

/// The drawing as a catalogue shows it: on a light backdrop with a soft shadow; Format_RGB32.
QImage studioShot(const Drawing& drawing, QSize pixels);

} // namespace samples
