// Scaling that averages instead of leaving pixels out.
#pragma once

#include <QImage>
#include <QSize>

namespace imaging {

// The whole image in any other size; `size` is at least 1 x 1.
QImage smoothlyScaled(const QImage& image, QSize size);

// Whether images of that size are better not scaled smoothly unless they become much smaller:
// scaling takes another image of the same size first, which may fill the memory.
bool isVeryLarge(QSize size);

} // namespace imaging
