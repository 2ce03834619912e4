// Scaling that averages instead of leaving pixels out.
#pragma once

#include <QImage>
#include <QSize>

namespace imaging {

// The whole image in any other size; `size` is at least 1 x 1.
QImage smoothlyScaled(const QImage& image, QSize size);

} // namespace imaging
