// Mirror images, in place and without further memory for pixels, on all cores.
//
// Images: RGB32 and ARGB32 are worked on as they are; any other becomes RGB32 or, if it has alpha,
// ARGB32 first. Whole pixels move, alpha included. A null image is left alone. An image that shares
// its pixels with others is given pixels of its own. Throws std::bad_alloc when there is no memory
// for them; the image then is as it was.
#pragma once

#include <QImage>
#include <QPoint>

namespace imaging::operations {

// Top to bottom.
void flip(QImage& image);

// Left to right.
void reverse(QImage& image);

// Where a pixel of an image of that size comes to lie.
QPoint flippedPoint(QPoint pixel, QSize size);
QPoint reversedPoint(QPoint pixel, QSize size);

} // namespace imaging::operations
