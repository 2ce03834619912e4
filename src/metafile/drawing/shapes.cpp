#include "metafile/drawing/shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace metafile {

namespace {

constexpr double kFullTurn = 360;

// Degrees against the clock, as if the rectangle were a square.
double angleOf(QPointF ray, const QRectF& rectangle) {
    const QPointF middle = rectangle.center();
    const double across = (ray.x() - middle.x()) / std::max(rectangle.width(), 1e-9);
    const double down = (ray.y() - middle.y()) / std::max(rectangle.height(), 1e-9);
    return std::atan2(-down, across) * 180 / std::numbers::pi;
}

struct Turn {
    double start = 0;
    double sweep = 0;
};

// Where mapping mirrors one axis, turning against the clock on the sheet is turning with it here.
Turn turnOf(const Box& box, const DeviceContext& context) {
    const QRectF rectangle = box.rectangle.normalized();
    const double start = angleOf(box.from, rectangle);
    const double end = angleOf(box.to, rectangle);
    const bool mirrored = context.toImage.determinant() < 0;
    const bool against = (context.arcDirection == ArcDirection::CounterClockwise) != mirrored;
    double sweep = against ? end - start : start - end;
    while (sweep <= 0) {
        sweep += kFullTurn;
    }
    return {start, against ? sweep : -sweep};
}

// The rectangle that a pen inside the frame runs along.
QRectF insideFrame(const Box& box, const DeviceContext& context) {
    QRectF rectangle = box.rectangle.normalized();
    const Pen& pen = context.pen;
    if (pen.style != PenStyle::InsideFrame || pen.widthKind == PenWidth::Cosmetic) {
        return rectangle;
    }
    const double across = std::min(pen.width, rectangle.width()) / 2;
    const double down = std::min(pen.width, rectangle.height()) / 2;
    return rectangle.adjusted(across, down, -across, -down);
}

void addCurves(QPainterPath& path, const QPointF* first, std::size_t count,
               const DeviceContext& context) {
    for (std::size_t i = 1; i + 2 < count; i += 3) {
        path.cubicTo(context.map(first[i]), context.map(first[i + 1]), context.map(first[i + 2]));
    }
}

void addPart(QPainterPath& path, const Poly& poly, std::size_t begin, std::size_t count,
             const DeviceContext& context) {
    if (count == 0) {
        return;
    }
    const QPointF* first = poly.points.data() + begin;
    path.moveTo(context.map(*first));
    if (poly.kind == PolyKind::Bezier) {
        addCurves(path, first, count, context);
        return;
    }
    for (std::size_t i = 1; i < count; ++i) {
        path.lineTo(context.map(first[i]));
    }
    if (poly.kind == PolyKind::Polygon) {
        path.closeSubpath();
    }
}

} // namespace

QPainterPath arcOf(const Box& box, const DeviceContext& context) {
    const QRectF rectangle = insideFrame(box, context);
    const Turn turn = turnOf(box, context);
    QPainterPath path;
    path.arcMoveTo(rectangle, turn.start);
    path.arcTo(rectangle, turn.start, turn.sweep);
    return path;
}

QPainterPath arcOf(const AngleArc& arc) {
    const QRectF rectangle(arc.centre.x() - arc.radius, arc.centre.y() - arc.radius, 2 * arc.radius,
                           2 * arc.radius);
    const double sweep = std::clamp(arc.sweep, -kFullTurn, kFullTurn);
    QPainterPath path;
    path.moveTo(arc.centre); // where an arc of no radius is
    path.arcMoveTo(rectangle, std::fmod(arc.start, kFullTurn));
    path.arcTo(rectangle, std::fmod(arc.start, kFullTurn), sweep);
    return path;
}

QPainterPath outlineOf(const Box& box, const DeviceContext& context) {
    const QRectF rectangle = insideFrame(box, context);
    QPainterPath path;
    switch (box.kind) {
    case BoxKind::Rectangle:
        path.addRect(rectangle);
        break;
    case BoxKind::Ellipse:
        path.addEllipse(rectangle);
        break;
    case BoxKind::RoundRectangle:
        path.addRoundedRect(rectangle, std::abs(box.corner.width()) / 2,
                            std::abs(box.corner.height()) / 2);
        break;
    case BoxKind::Arc:
    case BoxKind::ArcTo:
        path = arcOf(box, context);
        break;
    case BoxKind::Chord:
        path = arcOf(box, context);
        path.closeSubpath();
        break;
    case BoxKind::Pie:
        path = arcOf(box, context);
        path.lineTo(rectangle.center());
        path.closeSubpath();
        break;
    }
    return context.map(path);
}

QPainterPath outlineOf(const Poly& poly, const DeviceContext& context) {
    QPainterPath path;
    if (poly.counts.empty()) {
        addPart(path, poly, 0, poly.points.size(), context);
        return path;
    }
    std::size_t begin = 0;
    for (const std::size_t count : poly.counts) {
        addPart(path, poly, begin, count, context);
        begin += count;
    }
    return path;
}

} // namespace metafile
