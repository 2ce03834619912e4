#include "imaging/metafile/drawing_costs.h"

#include <algorithm>
#include <cmath>

namespace imaging::metafile {

namespace {

constexpr double kElement = 40; // to be mapped, flattened and put in order
constexpr double kFarthest = 32768;

// What is known of an outline's edges, in pixels.
struct Edges {
    double elements = 0;
    double crossed = 0; // within the sheet
    double walked = 0;  // each edge's whole length, as often as it has rows within the sheet
};

Edges edgesOf(const QPainterPath& outline, const QRectF& sheet) {
    const auto within = [](QPointF point, double left, double top, double right, double bottom) {
        return QPointF(std::clamp(point.x(), left, right), std::clamp(point.y(), top, bottom));
    };
    Edges edges;
    edges.elements = outline.elementCount();
    for (int i = 1; i < outline.elementCount(); ++i) {
        const auto element = outline.elementAt(i);
        if (element.type == QPainterPath::MoveToElement)
            continue;
        const QPointF from = outline.elementAt(i - 1);
        const auto seen = [&](QPointF point) {
            return within(point, sheet.left(), sheet.top(), sheet.right(), sheet.bottom());
        };
        const auto near = [&](QPointF point) {
            return within(point, -kFarthest, -kFarthest, kFarthest, kFarthest);
        };
        const QPointF visible = seen(element) - seen(from);
        edges.crossed += visible.manhattanLength();
        edges.walked += (near(element) - near(from)).manhattanLength() * std::abs(visible.y());
    }
    return edges;
}

// How far the edges of a wide line run around its corners: not at all where it goes straight on.
double cornerPixels(const QPainterPath& outline, double width, const QRectF& seen) {
    constexpr double kAround = 4; // widths, around an end
    const QRectF near = seen.adjusted(-width, -width, width, width);
    const double most = kAround * std::min(width, seen.width() + seen.height());
    double pixels = 0;
    QPointF lastStep;
    for (int i = 1; i < outline.elementCount(); ++i) {
        const QPointF step = QPointF(outline.elementAt(i)) - QPointF(outline.elementAt(i - 1));
        const double lengths =
            std::hypot(step.x(), step.y()) * std::hypot(lastStep.x(), lastStep.y());
        const double cosine = lengths > 0 ? QPointF::dotProduct(step, lastStep) / lengths : -1;
        if (near.contains(outline.elementAt(i - 1)))
            pixels += most * std::sqrt(std::max(0.0, 1 - cosine) / 2);
        lastStep = step;
    }
    return pixels + most;
}

QRectF seenPart(const QPainterPath& outline, double margin, const QRect& sheet) {
    const QRectF box = outline.controlPointRect().adjusted(-margin, -margin, margin, margin);
    const QRectF all(sheet);
    // Not QRectF's own intersection: lines along an axis have an empty box.
    const double left = std::clamp(box.left(), all.left(), all.right());
    const double top = std::clamp(box.top(), all.top(), all.bottom());
    return {QPointF(left, top), QPointF(std::clamp(box.right(), left, all.right()),
                                        std::clamp(box.bottom(), top, all.bottom()))};
}

// The painter has room for so few pixels of smooth edges that it paints the sheet in bands, of one
// row at worst, and goes along all edges for each band, along those that reach into it pixel by
// pixel.
double smoothCost(const Edges& edges, const QRectF& seen) {
    constexpr double kPixelsInBand = 125;
    constexpr double kPassedElement = 9;
    constexpr double kWalked = 10;
    constexpr double kCrossed = 30;
    const double rows = std::max(1.0, seen.height());
    const double bands = std::clamp(edges.crossed / kPixelsInBand, 1.0, rows);
    return bands * kPassedElement * edges.elements + bands / rows * kWalked * edges.walked +
           kCrossed * edges.crossed + seen.width() * seen.height();
}

double steppedCost(const Edges& edges, const QRectF& seen) {
    constexpr double kCrossed = 100;
    return kElement * edges.elements + kCrossed * edges.crossed + seen.width() * seen.height();
}

// Thin lines are drawn pixel by pixel, each somewhere else: most of the time goes by waiting for
// memory where the sheet is larger than the processor's caches.
double thinPixelCost(const QRect& sheet) {
    constexpr double kCached = 20;
    constexpr double kDistant = 100;
    constexpr double kCachedPixels = 2'000'000;
    return double{1} * sheet.width() * sheet.height() < kCachedPixels ? kCached : kDistant;
}

} // namespace

double fillCost(const QPainterPath& outline, const QRect& sheet, EdgeLook look) {
    const QRectF seen = seenPart(outline, 0, sheet);
    const Edges edges = edgesOf(outline, sheet);
    return kElement * edges.elements +
           (look == EdgeLook::Smooth ? smoothCost(edges, seen) : steppedCost(edges, seen));
}

double fillCost(const QRect& rectangle, const QRect& sheet) {
    constexpr double kRectangle = 200;
    const QRect seen = rectangle & sheet;
    return kRectangle + double{1} * seen.width() * seen.height();
}

double strokeCost(const QPainterPath& outline, const QPen& pen, const QRect& sheet, EdgeLook look) {
    constexpr double kStrokedElement = 10 * kElement;
    constexpr double kDash = 60 * kElement;
    constexpr double kSides = 2;
    constexpr double kElementsAround = 14; // of a line's join
    constexpr double kEnds = 4;            // widths
    const double dashes = dashCount(outline, pen);
    const double width = pen.widthF();
    Edges edges = edgesOf(outline, sheet);
    const double cost = kStrokedElement * edges.elements + kDash * dashes;
    if (width <= 1)
        return cost + thinPixelCost(sheet) * edges.crossed;
    const QRectF seen = seenPart(outline, width, sheet);
    const double ends = dashes * kEnds * std::min(width, seen.width() + seen.height());
    const double corners = cornerPixels(outline, width, seen) + ends;
    edges.elements = kElementsAround * (edges.elements + dashes);
    edges.crossed = kSides * edges.crossed + corners;
    edges.walked = kSides * edges.walked + corners * std::min(width, seen.height());
    return cost + (look == EdgeLook::Smooth ? smoothCost(edges, seen) : steppedCost(edges, seen));
}

double dashCount(const QPainterPath& outline, const QPen& pen) {
    if (pen.style() != Qt::CustomDashLine)
        return 0;
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

double regionCost(const QRegion& region) {
    constexpr double kRectangle = 20;
    return kRectangle * region.rectCount();
}

} // namespace imaging::metafile
