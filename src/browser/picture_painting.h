// How the main window's views paint pictures and the places where pictures stand.
#pragma once

#include "picture/picture.h"

#include <QImage>
#include <QPalette>
#include <QRectF>

class QPainter;

namespace browser {

// The picture fitted into `area` (device-independent pixels) with its proportions kept and never
// enlarged, at the screen's full resolution. The image's device pixel ratio tells its size.
QImage fitted(const picture::Picture& picture, const QSizeF& area, double screenRatio);

// `image` centred in `area` (device-independent pixels) at the size given by its device pixel
// ratio. A see-through image gets paper behind it.
void paintCentred(QPainter& painter, const QImage& image, const QRectF& area,
                  const QPalette& palette);

// The picture's name in as many lines as paintName() has, centred from the area's top on; what does
// not fit is cut in its middle.
inline constexpr int kNameLines = 2;
void paintName(QPainter& painter, const QRectF& area, const QString& name);

// The sign for a picture that cannot be decoded: a torn picture, centred in `area`.
void paintUndecodable(QPainter& painter, const QRectF& area, const QPalette& palette);

} // namespace browser
