// The objects that every device has from the start, by the numbers that files use.
// Source: [MS-EMF] 2.1.31 (StockObject).
#pragma once

#include "metafile/records/records.h"

namespace metafile {

// The object of that number (0 white brush, 5 null brush, 8 null pen, 13 system font, ...), or
// none.
Object stockObject(std::uint32_t number);

Brush solidBrush(QRgb colour);

// Pens and brushes as files number their styles.
PenStyle penStyleOf(std::uint32_t style);
Qt::PenCapStyle penCapOf(std::uint32_t style);
Qt::PenJoinStyle penJoinOf(std::uint32_t style);

// Solid, null and hatched brushes by their style number; other styles have a bitmap.
Brush plainBrush(std::uint32_t style, QRgb colour, std::uint32_t hatch);

} // namespace metafile
