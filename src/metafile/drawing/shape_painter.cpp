#include "metafile/drawing/shape_painter.h"

#include "metafile/bounds/outline_cutting.h"
#include "metafile/drawing/pen_and_brush.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

constexpr double kThin = 1.5;

// Of an operation that draws something.
QPainter::CompositionMode modeOf(const DeviceContext& context) {
    return compositionMode(context.rasterOperation).value_or(QPainter::CompositionMode_SourceOver);
}

EdgeLook edgeLook(const DeviceContext& context) {
    return copiesPen(context) ? EdgeLook::Smooth : EdgeLook::Stepped;
}

} // namespace

void ShapePainter::prepare(const DeviceContext& context) {
    QPainter& painter = canvas_.painter();
    if (!clipSet_) {
        painter.resetTransform();
        painter.setRenderHint(QPainter::Antialiasing);
        canvas_.clipTo(context.clip, context.frozenClip);
        clipSet_ = true;
    }
    painter.setOpacity(1);
    painter.setBrushOrigin(context.brushOrigin);
}

void ShapePainter::spend(const QPainterPath& outline, EdgeLook look) {
    canvas_.budget().spendPixels(fillCost(outline, canvas_.sheet(), look));
}

void ShapePainter::draw(const QPainterPath& outline, const DeviceContext& context, ShapePart part) {
    if (!compositionMode(context.rasterOperation) || outline.isEmpty()) {
        return;
    }
    prepare(context);
    if (part != ShapePart::Stroke && context.brush.kind != BrushKind::Null) {
        paintFill(outline, context.brush, context);
    }
    if (part != ShapePart::Fill) {
        paintStroke(outline, context);
    }
}

void ShapePainter::fill(const QPainterPath& outline, const Brush& brush,
                        const DeviceContext& context) {
    if (!compositionMode(context.rasterOperation) || brush.kind == BrushKind::Null) {
        return;
    }
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
    canvas_.budget().spendPixels(fillCost(*rectangle, canvas_.sheet()));
    QPainter& painter = canvas_.painter();
    canvas_.setMode(QPainter::CompositionMode_SourceOver);
    painter.fillRect(*rectangle, QColor::fromRgb(colour));
}

void ShapePainter::fillSmoothly(const QPainterPath& outline, QRgb colour,
                                const DeviceContext& context) {
    prepare(context);
    const QPainterPath path = cutArea(outline, canvas_.sheet());
    spend(path, EdgeLook::Smooth);
    QPainter& painter = canvas_.painter();
    canvas_.setMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillPath(path, QColor::fromRgb(colour));
}

QPainterPath ShapePainter::widened(const QPainterPath& outline, const DeviceContext& context) {
    const QPen pen = painterPen(context);
    if (pen.style() == Qt::NoPen) {
        return {};
    }
    // A pen's outline has many times the elements of its line, and may be widened again.
    constexpr int kMostElements = 20000;
    if (outline.elementCount() > kMostElements) {
        throw WorkExhausted();
    }
    canvas_.budget().spendPixels(strokeCost(outline, pen, canvas_.sheet(), EdgeLook::Stepped));
    QPainterPathStroker stroker(pen);
    stroker.setDashPattern(Qt::SolidLine);
    QPainterPath path = stroker.createStroke(outline);
    path.setFillRule(Qt::WindingFill);
    return path;
}

void ShapePainter::invert(const QPainterPath& outline, const DeviceContext& context) {
    prepare(context);
    const QPainterPath path = cutArea(outline, canvas_.sheet());
    spend(path, EdgeLook::Stepped);
    QPainter& painter = canvas_.painter();
    painter.setRenderHint(QPainter::Antialiasing, false);
    canvas_.setMode(QPainter::RasterOp_NotDestination);
    painter.fillPath(path, Qt::black);
}

void ShapePainter::paintFill(const QPainterPath& outline, const Brush& brush,
                             const DeviceContext& context) {
    canvas_.budget().spendPixels(patternCost(brush));
    QPainter& painter = canvas_.painter();
    canvas_.setMode(modeOf(context));
    painter.setRenderHint(QPainter::Antialiasing, copiesPen(context));
    const QBrush filling = painterBrush(brush, context);
    const bool showsGround = brush.kind == BrushKind::Hatched && context.backgroundOpaque;
    const QBrush ground = QColor::fromRgb(context.backgroundColour);
    // Neighbouring rectangles must meet without a seam.
    if (const auto rectangle = rectangleOf(outline)) {
        canvas_.budget().spendPixels(2 * fillCost(*rectangle, canvas_.sheet()));
        if (showsGround) {
            painter.fillRect(*rectangle, ground);
        }
        painter.fillRect(*rectangle, filling);
        return;
    }
    QPainterPath path = cutArea(outline, canvas_.sheet());
    spend(path, edgeLook(context));
    path.setFillRule(context.fillMode == FillMode::Winding ? Qt::WindingFill : Qt::OddEvenFill);
    if (showsGround) {
        painter.fillPath(path, ground);
    }
    painter.fillPath(path, filling);
}

void ShapePainter::paintStroke(const QPainterPath& outline, const DeviceContext& context) {
    constexpr double kMostDashes = 20000;
    canvas_.budget().spendPixels(patternCost(context.pen.brush));
    QPen pen = painterPen(context);
    if (pen.style() == Qt::NoPen) {
        return;
    }
    const double reach = pen.widthF() * std::max(1.0, 2 * pen.miterLimit());
    const QPainterPath lines = cutLines(outline, canvas_.sheet(), reach);
    if (dashCount(lines, pen) > kMostDashes) {
        pen.setStyle(Qt::SolidLine);
    }
    const double slowness = copiesPen(context) ? 1 : 2;
    canvas_.budget().spendPixels(slowness *
                                 strokeCost(lines, pen, canvas_.sheet(), edgeLook(context)));
    QPainter& painter = canvas_.painter();
    canvas_.setMode(modeOf(context));
    painter.setRenderHint(QPainter::Antialiasing, copiesPen(context));
    painter.strokePath(pen.widthF() < kThin ? sharpened(lines) : lines, pen);
}

} // namespace metafile
