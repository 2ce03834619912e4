// Turning by hundredths of a degree, on all cores. Positive angles turn clockwise on the screen,
// about the picture's middle; any number of turns.
//
// Images: RGB32 and ARGB32 give their own format; any other becomes RGB32 or, if it has alpha,
// ARGB32 first. Quarter turns are exact: each pixel is one pixel of the old picture, or the fill
// colour. All other angles interpolate between the four nearest pixels (bilinear; source: G.
// Wolberg, "Digital Image Warping", 1990, 5.4), and the edges are mixed with the fill colour by the
// same weights. Colours are weighted by their alpha, so that what cannot be seen does not shine
// through.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

namespace imaging::operations {

// Whether the picture keeps its size, so that corners are cut off, or grows to hold all of the
// turned picture. Quarter turns that grow swap width and height.
enum class Canvas { Keep, Grow };

struct Rotation {
    int angle = 0; // hundredths of a degree
    Canvas canvas = Canvas::Keep;
    QRgb fill = 0xFF000000; // of uncovered places, straight; opaque in an image without alpha
};

QSize rotatedSize(QSize size, const Rotation& rotation);

// The image itself, sharing its pixels, for whole turns and null images. Throws std::length_error,
// what() saying so, if the result had more pixels than a picture may have (kMaximumPixels), and
// std::bad_alloc.
QImage rotated(const QImage& image, const Rotation& rotation);

// The part of rotated(image, rotation) that lies in `part`, pixel for pixel, at the cost of that
// part only; places outside of the result have the fill colour. The result itself may have any
// size.
QImage rotatedPart(const QImage& image, const Rotation& rotation, const QRect& part);

// image = rotated(image, rotation); half turns in place and without further memory. The image is as
// it was if that throws. Whole turns change nothing.
void rotate(QImage& image, const Rotation& rotation);

// Where a pixel of an image of that size comes to lie: the nearest pixel inside the result.
QPoint rotatedPoint(QPoint pixel, QSize size, const Rotation& rotation);

} // namespace imaging::operations
