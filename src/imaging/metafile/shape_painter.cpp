#include "imaging/metafile/shape_painter.h"

#include "imaging/metafile/pen_and_brush.h"

#include <algorithm>
#include <cmath>

namespace imaging::metafile {

namespace {

constexpr double kThin = 1.5;

// How many dashes the pen would draw, about.
double dashCount(const QPainterPath& outline, const QPen& pen) {
    double period = 0;
    for (const qreal dash : pen.dashPattern())
        period += dash * pen.widthF();
    double length = 0;
    for (int i = 1; i < outline.elementCount(); ++i) {
        const QPointF step = QPointF(outline.elementAt(i)) - QPointF(outline.elementAt(i - 1));
        length += std::abs(step.x()) + std::abs(step.y());
    }
    return period > 0 ? length / period : 0;
}

} // namespace

void ShapePainter::prepare(const DeviceContext& context) {
    QPainter& painter = canvas_.painter();
    if (!clipSet_) {
        painter.resetTransform();
        Clip clip = context.clip;
        clip.intersect(context.frozenClip, canvas_.sheet());
        painter.setRenderHint(QPainter::Antialiasing);
        clip.applyTo(painter);
        clipSet_ = true;
    }
    painter.setOpacity(1);
    painter.setBrushOrigin(context.brushOrigin);
}

void ShapePainter::spend(const QPainterPath& outline, double margin) {
    canvas_.budget().spendPoints(static_cast<std::size_t>(outline.elementCount()));
    const QRectF box = outline.controlPointRect().adjusted(-margin, -margin, margin, margin) &
                       QRectF(canvas_.sheet());
    canvas_.budget().spendPixels(std::max(0.0, box.width()) * std::max(0.0, box.height()));
}

void ShapePainter::draw(const QPainterPath& outline, const DeviceContext& context, ShapePart part) {
    if (!compositionMode(context.rasterOperation) || outline.isEmpty())
        return;
    prepare(context);
    if (part != ShapePart::Stroke && context.brush.kind != BrushKind::Null)
        paintFill(outline, context.brush, context);
    if (part != ShapePart::Fill)
        paintStroke(outline, context);
}

void ShapePainter::fill(const QPainterPath& outline, const Brush& brush,
                        const DeviceContext& context) {
    if (!compositionMode(context.rasterOperation) || brush.kind == BrushKind::Null)
        return;
    prepare(context);
    paintFill(outline, brush, context);
}

void ShapePainter::fill(const QPainterPath& outline, QRgb colour, const DeviceContext& context) {
    const auto rectangle = rectangleOf(outline);
    if (!rectangle) {
        fillSmoothly(outline, colour, context);
        return;
    }
    prepare(context);
    spend(outline, 0);
    QPainter& painter = canvas_.painter();
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.fillRect(*rectangle, QColor::fromRgb(colour));
}

void ShapePainter::fillSmoothly(const QPainterPath& outline, QRgb colour,
                                const DeviceContext& context) {
    prepare(context);
    spend(outline, 0);
    QPainter& painter = canvas_.painter();
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillPath(outline, QColor::fromRgb(colour));
}

QPainterPath ShapePainter::widened(const QPainterPath& outline, const DeviceContext& context) {
    const QPen pen = painterPen(context);
    if (pen.style() == Qt::NoPen)
        return {};
    constexpr std::size_t kPointsAround = 8;
    canvas_.budget().spendPoints(kPointsAround * static_cast<std::size_t>(outline.elementCount()));
    QPainterPathStroker stroker(pen);
    stroker.setDashPattern(Qt::SolidLine);
    QPainterPath path = stroker.createStroke(outline);
    path.setFillRule(Qt::WindingFill);
    return path;
}

void ShapePainter::invert(const QPainterPath& outline, const DeviceContext& context) {
    prepare(context);
    spend(outline, 0);
    QPainter& painter = canvas_.painter();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::RasterOp_NotDestination);
    painter.fillPath(outline, Qt::black);
}

void ShapePainter::paintFill(const QPainterPath& outline, const Brush& brush,
                             const DeviceContext& context) {
    spend(outline, 0);
    QPainter& painter = canvas_.painter();
    painter.setCompositionMode(*compositionMode(context.rasterOperation));
    painter.setRenderHint(QPainter::Antialiasing, copiesPen(context));
    const QBrush filling = painterBrush(brush, context);
    const bool showsGround = brush.kind == BrushKind::Hatched && context.backgroundOpaque;
    const QBrush ground = QColor::fromRgb(context.backgroundColour);
    // Neighbouring rectangles must meet without a seam.
    if (const auto rectangle = rectangleOf(outline)) {
        if (showsGround)
            painter.fillRect(*rectangle, ground);
        painter.fillRect(*rectangle, filling);
        return;
    }
    QPainterPath path = outline;
    path.setFillRule(context.fillMode == FillMode::Winding ? Qt::WindingFill : Qt::OddEvenFill);
    if (showsGround)
        painter.fillPath(path, ground);
    painter.fillPath(path, filling);
}

void ShapePainter::paintStroke(const QPainterPath& outline, const DeviceContext& context) {
    constexpr double kMostDashes = 20000;
    QPen pen = painterPen(context);
    if (pen.style() == Qt::NoPen)
        return;
    spend(outline, pen.widthF());
    if (pen.style() == Qt::CustomDashLine) {
        const double count = dashCount(outline, pen);
        if (count > kMostDashes)
            pen.setStyle(Qt::SolidLine);
        else
            canvas_.budget().spendPoints(static_cast<std::size_t>(4 * count));
    }
    QPainter& painter = canvas_.painter();
    painter.setCompositionMode(*compositionMode(context.rasterOperation));
    painter.setRenderHint(QPainter::Antialiasing, copiesPen(context));
    painter.strokePath(pen.widthF() < kThin ? sharpened(outline) : outline, pen);
}

} // namespace imaging::metafile
