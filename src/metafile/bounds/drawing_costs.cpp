#include "metafile/bounds/drawing_costs.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace metafile {

namespace {

constexpr double kElement = 40; // to be mapped, flattened and put in order
constexpr double kFarthest = 32768;
constexpr double kEverywhere = 1e12; // pixels

// What is known of an outline's edges, in pixels.
struct Edges {
    double elements = 0;
    double crossed = 0; // within the sheet
    double walked = 0;  // each edge's whole length, as often as it has rows within the sheet
};

// How many different pixels intricate edges touch at most, in a line's width around them: thousands
// of short steps may lie in a few. Counted in the squares of a grid, by walking along the edges.
double touchedPixels(const QPainterPath& outline, const QRect& sheet, double width) {
    constexpr int kIntricate = 1000;
    constexpr int kMostSquares = 512; // a side
    constexpr std::size_t kMostSteps = 5'000'000;
    if (outline.elementCount() < kIntricate || sheet.isEmpty()) {
        return kEverywhere;
    }
    const int side = std::max(2, std::max(sheet.width(), sheet.height()) / kMostSquares);
    const int columns = sheet.width() / side + 1;
    const int rows = sheet.height() / side + 1;
    std::vector<bool> squares(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    const double most = static_cast<double>(squares.size()) / 2;
    double touched = 0;
    std::size_t steps = 0;
    const auto squareAt = [&](QPointF point) {
        return QPointF(std::clamp((point.x() - sheet.left()) / side, 0.0, columns - 1.0),
                       std::clamp((point.y() - sheet.top()) / side, 0.0, rows - 1.0));
    };
    for (int i = 1; i < outline.elementCount(); ++i) {
        if (outline.elementAt(i).isMoveTo()) {
            continue;
        }
        const QPointF from = squareAt(outline.elementAt(i - 1));
        const QPointF way = squareAt(outline.elementAt(i)) - from;
        const double length = way.manhattanLength();
        if (!std::isfinite(length)) { // a place that is no number stands nowhere in the grid
            return kEverywhere;
        }
        const int count = static_cast<int>(std::ceil(length)) + 1;
        steps += static_cast<std::size_t>(count);
        if (touched > most || steps > kMostSteps) {
            return kEverywhere;
        }
        for (int step = 0; step <= count; ++step) {
            const QPointF at = from + way * (double{1} * step / count);
            const auto square =
                static_cast<std::size_t>(at.y()) * static_cast<std::size_t>(columns) +
                static_cast<std::size_t>(at.x());
            touched += squares[square] ? 0 : 1;
            squares[square] = true;
        }
    }
    return touched * side * (side + width);
}

Edges edgesOf(const QPainterPath& outline, const QRectF& sheet) {
    const auto within = [](QPointF point, double left, double top, double right, double bottom) {
        return QPointF(std::clamp(point.x(), left, right), std::clamp(point.y(), top, bottom));
    };
    Edges edges;
    edges.elements = outline.elementCount();
    for (int i = 1; i < outline.elementCount(); ++i) {
        const auto element = outline.elementAt(i);
        if (element.type == QPainterPath::MoveToElement) {
            continue;
        }
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
        if (near.contains(outline.elementAt(i - 1))) {
            pixels += most * std::sqrt(std::max(0.0, 1 - cosine) / 2);
        }
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
double smoothCost(const Edges& edges, const QRectF& seen, double touched = kEverywhere) {
    constexpr double kPixelsInBand = 125;
    constexpr double kPassedElement = 9;
    constexpr double kWalked = 10;
    constexpr double kCrossed = 30;
    const double rows = std::max(1.0, seen.height());
    const double pixels = std::min(edges.crossed, touched);
    const double bands = std::clamp(pixels / kPixelsInBand, 1.0, rows);
    return bands * kPassedElement * edges.elements + bands / rows * kWalked * edges.walked +
           kCrossed * edges.crossed + seen.width() * seen.height();
}

// An outline of `width`, 0 for a filled one. The pixels that it touches are only counted where
// painting could take longer than counting.
double smoothCost(const QPainterPath& outline, const Edges& edges, const QRectF& seen,
                  const QRect& sheet, double width) {
    constexpr double kWorthCounting = 1'000'000;
    const double cost = smoothCost(edges, seen);
    return cost < kWorthCounting ? cost
                                 : smoothCost(edges, seen, touchedPixels(outline, sheet, width));
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
    return kElement * edges.elements + (look == EdgeLook::Smooth
                                            ? smoothCost(outline, edges, seen, sheet, 0)
                                            : steppedCost(edges, seen));
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
    // Of the outline to one of the line's.
    const double elementsAround = pen.joinStyle() == Qt::RoundJoin ? 14 : 6;
    constexpr double kEnds = 4; // widths
    const double dashes = dashCount(outline, pen);
    const double width = pen.widthF();
    Edges edges = edgesOf(outline, sheet);
    const double cost = kStrokedElement * edges.elements + kDash * dashes;
    if (width <= 1) {
        return cost + thinPixelCost(sheet) * edges.crossed;
    }
    const QRectF seen = seenPart(outline, width, sheet);
    const double ends = dashes * kEnds * std::min(width, seen.width() + seen.height());
    const double corners = cornerPixels(outline, width, seen) + ends;
    edges.elements = elementsAround * (edges.elements + dashes);
    edges.crossed = kSides * edges.crossed + corners;
    edges.walked = kSides * edges.walked + corners * std::min(width, seen.height());
    return cost + (look == EdgeLook::Smooth ? smoothCost(outline, edges, seen, sheet, width)
                                            : steppedCost(edges, seen));
}

double dashCount(const QPainterPath& outline, const QPen& pen) {
    if (pen.style() != Qt::CustomDashLine) {
        return 0;
    }
    double period = 0;
    for (const qreal dash : pen.dashPattern()) {
        period += dash * pen.widthF();
    }
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

} // namespace metafile
