// A context's pen, brush and drawing mode, as the painter knows them.
#pragma once

#include "metafile/drawing/device_context.h"

#include <QBrush>
#include <QPen>

namespace metafile {

// In image pixels, at least one wide; Qt::NoPen for a null pen.
QPen painterPen(const DeviceContext& context);

// Its pattern repeats in image pixels; monochrome ones get the context's colours.
QBrush painterBrush(const Brush& brush, const DeviceContext& context);

// What painting with the brush takes besides, in pixels filled: the painter makes a picture of its
// own of each pattern.
double patternCost(const Brush& brush);

// The painter's counterpart of one of the sixteen operations of pen and destination; none for the
// one that leaves everything as it is.
std::optional<QPainter::CompositionMode> compositionMode(int rasterOperation);

// Whether the operation just puts the pen's colour.
bool copiesPen(const DeviceContext& context);

// A two-colour image with the context's text and background colour in the place of black and white.
QImage inContextColours(const QImage& image, const DeviceContext& context);

} // namespace metafile
