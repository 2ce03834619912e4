// EMF+ pens: what of a line a painter strokes, and what is filled beside it.
#pragma once

#include "metafile/drawing/canvas.h"
#include "metafile/plus/plus_records.h"

#include <QBrush>
#include <QPen>

namespace metafile {

// Image pixels to one of these units, the mean of both directions. `world` maps world units there.
double plusUnitScale(PlusUnit unit, const QTransform& world, const Canvas& canvas,
                     double dotsPerInch);

// A line as it is painted. A nib that transforms have made an ellipse is round in coordinates of
// its own, in which the line is told and from which its outline is mapped to image pixels.
struct PlusLine {
    QPainterPath line; // shortened where its ends have heads
    QPen pen;          // at least one pixel wide
    QTransform toImage;
    bool roundNib = true; // toImage changes nothing
    QPainterPath heads;   // in image pixels, to be filled with the pen's brush
};

// `line` is in image pixels; `nib` maps the pen's units there. The dashes of a line that would have
// too many are left out; the work that the others cause is spent.
PlusLine plusLine(const QPainterPath& line, const PlusPen& pen, const QTransform& nib,
                  const QBrush& brush, WorkBudget& budget);

// How far from a line the pen may reach, in image pixels.
double plusLineReach(const PlusPen& pen, const QTransform& nib);

// What painting the line takes, as drawing_costs.h counts it.
double plusLineCost(const PlusLine& line, const QRect& sheet);

// Strokes the line and fills its heads. The painter is set to image pixels and clipped.
void paintPlusLine(QPainter& painter, const PlusLine& line);

// The same for several lines side by side in the pen's width: `edges` tells where they begin and
// end, 0 to 1. They are taken to lie evenly on both sides of the middle. `touched`: the pixels that
// the pen may touch.
void paintPlusLines(QPainter& painter, const PlusLine& line, const std::vector<double>& edges,
                    const QRect& touched);

} // namespace metafile
