// The objects that every device has from the start, by the numbers that files use.
// Sources: [MS-EMF] 2.1.31 (StockObject), [MS-WMF] 2.2.2.8 (ColorRef).
#pragma once

#include "metafile/records/records.h"

namespace metafile {

// The object of that number (0 white brush, 5 null brush, 8 null pen, 13 system font, ...), or
// none.
Object stockObject(std::uint32_t number);

// The colour that a file's four bytes mean (red, green, blue from the lowest on). The highest byte
// says how: 1 makes the others the number of an entry of the palette (null: the default one, of
// twenty colours); a number that it does not have is black.
QRgb meantColour(std::uint32_t value, const Palette* selected);

Brush solidBrush(QRgb colour);

// Pens and brushes as files number their styles.
PenStyle penStyleOf(std::uint32_t style);
Qt::PenCapStyle penCapOf(std::uint32_t style);
Qt::PenJoinStyle penJoinOf(std::uint32_t style);

// Solid, null and hatched brushes by their style number; other styles have a bitmap.
Brush plainBrush(std::uint32_t style, QRgb colour, std::uint32_t hatch);

} // namespace metafile
