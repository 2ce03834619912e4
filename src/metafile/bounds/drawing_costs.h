// What painting an outline will take, estimated before it is done: a single record may hold a
// hundred thousand lines that all cross each other, and nothing stops the painter once it has
// begun.
#pragma once

#include <QPainterPath>
#include <QPen>
#include <QRect>
#include <QRegion>

namespace metafile {

// All in pixels that could be filled in the same time, as WorkBudget counts them; `sheet` is what
// can be seen.

enum class EdgeLook { Smooth, Stepped };

double fillCost(const QPainterPath& outline, const QRect& sheet, EdgeLook look);
double fillCost(const QRect& rectangle, const QRect& sheet);

// With the pen's dashes, joins and ends.
double strokeCost(const QPainterPath& outline, const QPen& pen, const QRect& sheet, EdgeLook look);

// How many dashes the pen would draw, about; 0 for a solid pen.
double dashCount(const QPainterPath& outline, const QPen& pen);

// Uniting the region with another, or painting through it.
double regionCost(const QRegion& region);

} // namespace metafile
