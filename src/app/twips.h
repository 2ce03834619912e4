// Lengths of windows are written in twips; this is the one place where they become pixels: 15 twips
// are one device-independent pixel. Fractions are kept until the conversion and rounded there.
#pragma once

#include "base/picture_units.h"

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QtMath>

namespace app {

using base::kTwipsPerPixel;

// All four in twips; left and top relative to the parent.
struct TwipRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;

    bool operator==(const TwipRect&) const = default;
};

inline int toPixels(double twips) {
    return qRound(twips / kTwipsPerPixel);
}

inline double toTwips(double pixels) {
    return pixels * kTwipsPerPixel;
}

inline QSize toPixels(double widthInTwips, double heightInTwips) {
    return {toPixels(widthInTwips), toPixels(heightInTwips)};
}

inline QRect toPixels(const TwipRect& rect) {
    return {toPixels(rect.left), toPixels(rect.top), toPixels(rect.width), toPixels(rect.height)};
}

} // namespace app
