// The outlines of shape records.
#pragma once

#include "metafile/drawing/device_context.h"

namespace metafile {

// In image pixels. Arcs turn as the context's direction says, as seen on the sheet.
QPainterPath outlineOf(const Box& box, const DeviceContext& context);

// The arc alone, for records that go on from the current position: logical units.
QPainterPath arcOf(const Box& box, const DeviceContext& context);
QPainterPath arcOf(const AngleArc& arc);

// A polygon or line through mapped points, each part a figure of its own. Curves take three points
// each after the first; what is left over at the end is dropped.
QPainterPath outlineOf(const Poly& poly, const DeviceContext& context);

} // namespace metafile
