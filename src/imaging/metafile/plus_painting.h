// EMF+ brushes and pens as the painter knows them.
#pragma once

#include "imaging/metafile/canvas.h"
#include "imaging/metafile/plus_records.h"

#include <QBrush>
#include <QPen>

namespace imaging::metafile {

// Paints in image pixels. `toImage` maps the brush's coordinates there; `origin` is where hatches
// begin, in image pixels. A path gradient is drawn on a layer of the sheet's size first, which
// spends work.
QBrush plusBrush(const PlusBrush& brush, const QTransform& toImage, QPoint origin, Canvas& canvas);

// Image pixels to one of these units, the mean of both directions. `world` maps world units there.
double plusUnitScale(PlusUnit unit, const QTransform& world, const Canvas& canvas,
                     double dotsPerInch);

// A pen `width` image pixels wide, at least one.
QPen plusPen(const PlusPen& pen, double width, const QBrush& brush);

// The heads of a line that ends in arrows or triangles, to be filled with the pen's brush.
QPainterPath plusLineEnds(const QPainterPath& line, const PlusPen& pen, double width);

} // namespace imaging::metafile
