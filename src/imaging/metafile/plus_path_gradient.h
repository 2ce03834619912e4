// The path gradients of EMF+: from the colours of a figure's edge to that of its centre.
#pragma once

#include "imaging/metafile/plus_records.h"
#include "imaging/metafile/work_budget.h"

#include <QImage>
#include <QTransform>

namespace imaging::metafile {

// Paints the gradient's figure, and a little around it so that smooth edges find their colour, on
// the transparent premultiplied `layer`; the rest stays. `toLayer` maps the brush's coordinates to
// its pixels. Spends what it costs.
void paintPathGradient(QImage& layer, const PlusBrush& brush, const QTransform& toLayer,
                       WorkBudget& budget);

} // namespace imaging::metafile
