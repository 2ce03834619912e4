// The path gradients of EMF+: from the colours of a figure's edge to that of its centre.
#pragma once

#include "metafile/bounds/work_budget.h"
#include "metafile/plus/plus_records.h"

#include <QImage>
#include <QTransform>

namespace metafile {

// Paints the gradient's figure, and a little around it so that smooth edges find their colour, on
// the transparent premultiplied `layer`; the rest stays. `toLayer` maps the brush's coordinates to
// its pixels. Spends what it costs.
void paintPathGradient(QImage& layer, const PlusBrush& brush, const QTransform& toLayer,
                       WorkBudget& budget);

} // namespace metafile
