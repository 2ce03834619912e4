// Draws the pictures and metafiles that EMF+ objects hold.
#pragma once

#include "metafile/drawing/canvas.h"
#include "metafile/drawing/nested_metafiles.h"
#include "metafile/plus/plus_records.h"

namespace metafile {

// Where a picture's top left corner goes, and its upper and left sides from there; image pixels.
struct PlusImagePlace {
    QPointF corner, across, down;

    QSizeF size() const;
};

// Draws `part` of the image there. The canvas's painter is set to image pixels and clipped; its
// hints and transform are other ones afterwards. Spends what it costs. Throws DecodeError when a
// metafile cannot be read, and WorkExhausted.
void drawPlusImage(Canvas& canvas, const PlusImage& image, const QRectF& part,
                   const PlusImagePlace& place, const NestedMetafiles& nested);

} // namespace metafile
