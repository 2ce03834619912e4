// EMF+ brushes as the painter knows them.
#pragma once

#include "metafile/drawing/canvas.h"
#include "metafile/plus/plus_records.h"

#include <QBrush>

namespace metafile {

// Paints in image pixels. `toImage` maps the brush's coordinates there; `origin` is where hatches
// begin, in image pixels. A path gradient is drawn on a layer of the sheet's size first, which
// spends work.
QBrush plusBrush(const PlusBrush& brush, const QTransform& toImage, QPoint origin, Canvas& canvas);

} // namespace metafile
