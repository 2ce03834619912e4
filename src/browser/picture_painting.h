// How the main window's views paint pictures and the places where pictures stand.
#pragma once

#include "imaging/picture.h"

#include <QImage>
#include <QPalette>
#include <QRectF>

class QPainter;

namespace browser {

// A colour between two of the palette's; share 0 is the first, 1 the second.
QColor between(const QColor& first, const QColor& second, double share);

// The light colour of the palette on which see-through pictures lie: drawings in dark lines stay
// visible on a dark desktop.
QColor paperColor(const QPalette& palette);

// The picture fitted into `area` (device-independent pixels) with its proportions kept and never
// enlarged, at the screen's full resolution. The image's device pixel ratio tells its size.
QImage fitted(const imaging::Picture& picture, const QSizeF& area, double screenRatio);

// `image` centred in `area` (device-independent pixels) at the size given by its device pixel
// ratio. A see-through image gets paper behind it.
void paintCentred(QPainter& painter, const QImage& image, const QRectF& area,
                  const QPalette& palette);

// The sign for a picture that cannot be decoded: a torn picture, centred in `area`.
void paintUndecodable(QPainter& painter, const QRectF& area, const QPalette& palette);

} // namespace browser
