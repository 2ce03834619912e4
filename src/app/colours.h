// Colours made from the palette, for windows that show pictures.
#pragma once

#include <QColor>

class QPalette;

namespace app {

// A colour between two others; share 0 is the first, 1 the second.
QColor between(const QColor& first, const QColor& second, double share);

// The light colour of the palette on which see-through pictures lie: drawings in dark lines stay
// visible on a dark desktop.
QColor paperColor(const QPalette& palette);

} // namespace app
