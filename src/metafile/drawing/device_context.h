// What records set and drawing needs: the state that SaveState keeps and RestoreState brings back.
#pragma once

#include "metafile/drawing/canvas.h"
#include "metafile/records/records.h"

namespace metafile {

// Logical units -> page units by the world transform, -> device units by window and viewport.
struct Mapping {
    MapMode mode = MapMode::Text;
    QPointF windowOrigin;
    QPointF windowExtent{1, 1};
    QPointF viewportOrigin;
    QPointF viewportExtent{1, 1};
    QTransform world;

    // Extents count in the last two modes only; the others have fixed units. An extent of 0 counts
    // as 1.
    QTransform toDevice(QSizeF pixelsPerMillimetre) const;

    // The page's part of it, without the world transform.
    QTransform pageToDevice(QSizeF pixelsPerMillimetre) const;
};

struct DeviceContext {
    Pen pen;
    Brush brush;
    Font font;
    QRgb textColour = qRgb(0, 0, 0);
    QRgb backgroundColour = qRgb(255, 255, 255);
    bool backgroundOpaque = true;
    FillMode fillMode = FillMode::Alternate;
    int rasterOperation = 13; // copies the pen
    bool smoothStretching = false;
    unsigned textAlignment = 0;
    double characterExtra = 0;
    SetJustification justification;
    ArcDirection arcDirection = ArcDirection::CounterClockwise;
    double miterLimit = 10;
    QPoint brushOrigin;

    QPointF position; // the current one, in logical units
    Mapping mapping;
    Clip clip;       // image pixels
    Clip frozenClip; // holds besides `clip`

    // Kept up to date by whoever changes the mapping.
    QTransform toImage;     // logical units -> image pixels
    QTransform pageToImage; // the same without the world transform

    double imagePerDevice = 1; // image pixels to one device unit, the mean of both directions

    // Image pixels to one logical unit, the mean of both directions.
    double scale() const;

    // A wild point is bounded, so that no painter loses its way.
    QPointF map(QPointF logical) const;
    QPainterPath map(const QPainterPath& logical) const;
};

} // namespace metafile
