// The hatch brushes of EMF+: small tiles of two colours.
// Source of the numbers: [MS-EMFPLUS] 2.1.1.13 (HatchStyle).
#pragma once

#include <QColor>
#include <QImage>

namespace metafile {

// 8 x 8 pixels with alpha. An unknown style is a forward diagonal.
QImage plusHatchTile(int style, QRgb lines, QRgb ground);

} // namespace metafile
