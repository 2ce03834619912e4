#include "metafile/drawing/device_context.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

// Far outside of any sheet, and still exact in the painter's fixed-point numbers.
constexpr double kFarthest = 60000;

QPointF bounded(QPointF point) {
    const auto bound = [](double value) {
        return std::isfinite(value) ? std::clamp(value, -kFarthest, kFarthest) : 0.0;
    };
    return {bound(point.x()), bound(point.y())};
}

double orOne(double extent) {
    return extent == 0 ? 1 : extent;
}

// Millimetres of one unit in the modes with fixed units; their y axes point up.
double millimetres(MapMode mode) {
    constexpr double kInch = 25.4;
    switch (mode) {
    case MapMode::LowMetric:
        return 0.1;
    case MapMode::HighMetric:
        return 0.01;
    case MapMode::LowEnglish:
        return kInch / 100;
    case MapMode::HighEnglish:
        return kInch / 1000;
    default:
        return kInch / 1440;
    }
}

// One unit is as long across as down: the longer one is shortened.
QPointF evened(QPointF scale, QSizeF pixelsPerMillimetre) {
    const double across = std::abs(scale.x()) / pixelsPerMillimetre.width();
    const double down = std::abs(scale.y()) / pixelsPerMillimetre.height();
    const double both = std::min(across, down);
    return {std::copysign(both * pixelsPerMillimetre.width(), scale.x()),
            std::copysign(both * pixelsPerMillimetre.height(), scale.y())};
}

} // namespace

QTransform Mapping::pageToDevice(QSizeF pixelsPerMillimetre) const {
    QPointF scale(1, 1);
    if (mode == MapMode::Isotropic || mode == MapMode::Anisotropic) {
        scale = {orOne(viewportExtent.x()) / orOne(windowExtent.x()),
                 orOne(viewportExtent.y()) / orOne(windowExtent.y())};
        if (mode == MapMode::Isotropic) {
            scale = evened(scale, pixelsPerMillimetre);
        }
    } else if (mode != MapMode::Text) {
        scale = {millimetres(mode) * pixelsPerMillimetre.width(),
                 -millimetres(mode) * pixelsPerMillimetre.height()};
    }
    return {scale.x(),
            0,
            0,
            scale.y(),
            viewportOrigin.x() - windowOrigin.x() * scale.x(),
            viewportOrigin.y() - windowOrigin.y() * scale.y()};
}

QTransform Mapping::toDevice(QSizeF pixelsPerMillimetre) const {
    return world * pageToDevice(pixelsPerMillimetre);
}

double DeviceContext::scale() const {
    return std::sqrt(std::abs(toImage.determinant()));
}

QPointF DeviceContext::map(QPointF logical) const {
    return bounded(toImage.map(logical));
}

QPainterPath DeviceContext::map(const QPainterPath& logical) const {
    QPainterPath path = toImage.map(logical);
    const QRectF box = path.controlPointRect();
    if (box.left() > -kFarthest && box.top() > -kFarthest && box.right() < kFarthest &&
        box.bottom() < kFarthest) {
        return path;
    }
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF point = bounded(path.elementAt(i));
        path.setElementPositionAt(i, point.x(), point.y());
    }
    return path;
}

} // namespace metafile
