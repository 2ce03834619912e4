#include "metafile/plus_drawing/plus_pens.h"

#include "metafile/bounds/drawing_costs.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

constexpr double kThin = 1.5; // image pixels
constexpr double kMostDashes = 20000;
constexpr int kMostHeadPoints = 100000; // of all heads of a line, and of what one is made of

// How much longer a length becomes at most, and half as much again.
double stretchOf(const QTransform& transform) {
    constexpr double kSkewed = 1.5;
    return kSkewed * std::max(std::hypot(transform.m11(), transform.m12()),
                              std::hypot(transform.m21(), transform.m22()));
}

// Whether circles stay circles, but for a percent.
bool keepsCircles(const QTransform& transform) {
    constexpr double kTolerance = 0.01;
    const double first = std::hypot(transform.m11(), transform.m12());
    const double second = std::hypot(transform.m21(), transform.m22());
    const double skew = transform.m11() * transform.m21() + transform.m12() * transform.m22();
    return std::abs(first - second) <= kTolerance * std::max(first, second) &&
           std::abs(skew) <= kTolerance * first * second;
}

// Circles become ellipses, but none that is nearly a line.
bool isSensibleNib(const QTransform& transform) {
    constexpr double kSmallest = 0.01;
    const double first = std::hypot(transform.m11(), transform.m12());
    const double second = std::hypot(transform.m21(), transform.m22());
    return std::isfinite(first) && std::isfinite(second) &&
           std::abs(transform.determinant()) > kSmallest * std::max(first * first, second * second);
}

Qt::PenCapStyle capStyle(PlusCap cap) {
    switch (cap) {
    case PlusCap::Square:
        return Qt::SquareCap;
    case PlusCap::Round:
        return Qt::RoundCap;
    default:
        return Qt::FlatCap;
    }
}

// What a painter draws at both ends itself; other ends are shapes of their own.
bool hasPainterCaps(const PlusPen& pen) {
    return pen.start.head == PlusHead::None && pen.end.head == PlusHead::None &&
           pen.start.cap == pen.end.cap && pen.start.cap != PlusCap::Triangle;
}

void setDashes(QPen& result, const PlusPen& pen, double length, WorkBudget& budget) {
    constexpr double kShortestPeriod = 0.5; // image pixels
    constexpr double kShortest = 0.01;
    QList<qreal> dashes;
    double period = 0;
    for (const double dash : pen.dashes) {
        dashes.append(std::max(dash, kShortest));
        period += dash;
    }
    period *= result.widthF();
    if (period < kShortestPeriod || length / period > kMostDashes) {
        return;
    }
    budget.spendPoints(static_cast<std::size_t>(8 * length / period) *
                       static_cast<std::size_t>(dashes.size() / 2 + 1));
    if (dashes.size() % 2 != 0) {
        dashes += dashes;
    }
    // Round ends belong to the dash, where a painter adds them.
    if (pen.dashCap == PlusCap::Round) {
        for (qsizetype i = 0; i + 1 < dashes.size(); i += 2) {
            const double ends = std::min(1.0, dashes[i] - kShortest);
            dashes[i] -= ends;
            dashes[i + 1] += ends;
        }
    }
    result.setDashPattern(dashes);
    result.setDashOffset(pen.dashOffset);
    result.setCapStyle(capStyle(pen.dashCap));
}

// --- Ends of lines, told for a line one unit wide that comes from below and ends at the origin

// How much shorter a line becomes so that it does not stick out of its head.
double insetOf(const PlusLineEnd& end) {
    constexpr double kOfArrow = 1.5;
    if (end.head == PlusHead::Custom) {
        return end.inset;
    }
    return end.head == PlusHead::Arrow ? kOfArrow : 0;
}

QPainterPath polygon(const QPolygonF& corners) {
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    return path;
}

QPainterPath capShape(PlusCap cap) {
    QPainterPath path;
    if (cap == PlusCap::Round) {
        path.addEllipse(QPointF(), 0.5, 0.5);
    } else if (cap == PlusCap::Square) {
        path.addRect(-0.5, 0, 1, 0.5);
    } else if (cap == PlusCap::Triangle) {
        path = polygon({QPointF(-0.5, 0), QPointF(0, 0.5), QPointF(0.5, 0)});
    }
    return path;
}

QPainterPath headShape(const PlusLineEnd& end) {
    constexpr double kArrowLength = 1.732; // the sides are equal
    QPainterPath path;
    switch (end.head) {
    case PlusHead::None:
        return capShape(end.cap);
    case PlusHead::Square:
        path.addRect(-1, -1, 2, 2);
        return path;
    case PlusHead::Round:
        path.addEllipse(QPointF(), 1, 1);
        return path;
    case PlusHead::Diamond:
        return polygon({QPointF(-1, 0), QPointF(0, 1), QPointF(1, 0), QPointF(0, -1)});
    case PlusHead::Arrow:
        return polygon({QPointF(-1, -kArrowLength), QPointF(), QPointF(1, -kArrowLength)});
    case PlusHead::Custom:
        break;
    }
    if (end.fill.elementCount() > kMostHeadPoints || end.line.elementCount() > kMostHeadPoints) {
        return path;
    }
    path = end.fill;
    if (!end.line.isEmpty()) {
        QPainterPathStroker stroker;
        stroker.setWidth(end.lineWidth);
        stroker.setJoinStyle(Qt::MiterJoin);
        path.addPath(stroker.createStroke(end.line));
    }
    return path;
}

// --- Heads at the ends of every open figure of a line

class HeadMaker {
  public:
    HeadMaker(const PlusPen& pen, double width)
        : startShape_(headShape(pen.start)),
          endShape_(headShape(pen.end)),
          startInset_(insetOf(pen.start) * width),
          endInset_(insetOf(pen.end) * width),
          width_(width) {}

    // Adds the heads to `heads` and shortens the line.
    void make(QPainterPath& line, QPainterPath& heads) const {
        heads.setFillRule(Qt::WindingFill);
        const QPainterPath whole = line;
        int begin = 0;
        for (int i = 1; i <= whole.elementCount(); ++i) {
            if (i < whole.elementCount() && !whole.elementAt(i).isMoveTo()) {
                continue;
            }
            if (isOpen(whole, begin, i - 1)) {
                put(line, heads, begin, begin + 1, startShape_, startInset_);
                put(line, heads, i - 1, i - 2, endShape_, endInset_);
            }
            begin = i;
        }
    }

  private:
    static bool isOpen(const QPainterPath& path, int begin, int end) {
        return end > begin && QPointF(path.elementAt(begin)) != QPointF(path.elementAt(end));
    }

    void put(QPainterPath& line, QPainterPath& heads, int tipAt, int beforeAt,
             const QPainterPath& shape, double inset) const {
        if (heads.elementCount() > kMostHeadPoints) {
            return;
        }
        const QPointF tip = line.elementAt(tipAt);
        const QPointF way = tip - QPointF(line.elementAt(beforeAt));
        const double length = std::hypot(way.x(), way.y());
        if (length == 0) {
            return;
        }
        const QPointF along = way / length;
        const QTransform place(along.y() * width_, -along.x() * width_, along.x() * width_,
                               along.y() * width_, tip.x(), tip.y());
        heads.addPath(place.map(shape));
        constexpr double kMost = 0.95; // of the last piece: it keeps its direction
        const QPointF end = tip - along * std::min(inset, kMost * length);
        line.setElementPositionAt(tipAt, end.x(), end.y());
    }

    QPainterPath startShape_;
    QPainterPath endShape_;
    double startInset_;
    double endInset_;
    double width_;
};

} // namespace

double plusUnitScale(PlusUnit unit, const QTransform& world, const Canvas& canvas,
                     double dotsPerInch) {
    constexpr double kPointsPerInch = 72;
    constexpr double kDocumentUnitsPerInch = 300;
    constexpr double kMillimetresPerInch = 25.4;
    switch (unit) {
    case PlusUnit::World:
        return std::sqrt(std::abs(world.determinant()));
    case PlusUnit::Point:
        return canvas.scale() * dotsPerInch / kPointsPerInch;
    case PlusUnit::Inch:
        return canvas.scale() * dotsPerInch;
    case PlusUnit::Document:
        return canvas.scale() * dotsPerInch / kDocumentUnitsPerInch;
    case PlusUnit::Millimetre:
        return canvas.scale() * dotsPerInch / kMillimetresPerInch;
    default:
        return canvas.scale();
    }
}

PlusLine plusLine(const QPainterPath& line, const PlusPen& pen, const QTransform& nib,
                  const QBrush& brush, WorkBudget& budget) {
    constexpr double kWidest = 10000; // more would be beyond what painters count in
    const QTransform shape = pen.transform * nib;
    const QTransform turn(shape.m11(), shape.m12(), shape.m21(), shape.m22(), 0, 0);
    const double scale = std::sqrt(std::abs(turn.determinant()));
    const double width = std::clamp(pen.width * scale, 1.0, kWidest);

    PlusLine result;
    result.roundNib = width < kThin || keepsCircles(turn) || !isSensibleNib(turn);
    if (!result.roundNib) {
        result.toImage = turn * QTransform::fromScale(1 / scale, 1 / scale);
    }
    result.line = result.toImage.inverted().map(line);
    const bool painterCaps = hasPainterCaps(pen);
    result.pen = QPen(brush, width, Qt::SolidLine,
                      painterCaps ? capStyle(pen.start.cap) : Qt::FlatCap, pen.join);
    // Where corners are cut at the limit, Qt counts from the line's middle, and others from the tip
    // to the inside.
    const double limit = pen.join == Qt::MiterJoin ? pen.miterLimit / 2 : pen.miterLimit;
    result.pen.setMiterLimit(std::max(1.0, limit));
    if (!painterCaps) {
        constexpr int kPointsAround = 20; // to widen a head's line
        budget.spendPoints(4 * static_cast<std::size_t>(line.elementCount()));
        for (const PlusLineEnd* end : {&pen.start, &pen.end}) {
            budget.spendPoints(static_cast<std::size_t>(end->fill.elementCount() +
                                                        kPointsAround * end->line.elementCount()));
        }
        HeadMaker(pen, width).make(result.line, result.heads);
        budget.spendPoints(static_cast<std::size_t>(result.heads.elementCount()));
        result.heads = result.toImage.map(result.heads);
    }
    if (!pen.dashes.empty()) {
        setDashes(result.pen, pen, result.line.length(), budget);
    } else if (result.roundNib && width < kThin) {
        result.line = sharpened(result.line);
    }
    return result;
}

double plusLineReach(const PlusPen& pen, const QTransform& nib) {
    const double widest = std::max(1.0, pen.width * stretchOf(pen.transform * nib));
    return widest * std::max(1.0, pen.miterLimit);
}

double plusLineCost(const PlusLine& line, const QRect& sheet) {
    QPen pen = line.pen;
    if (!line.roundNib) {
        // As wide as the ellipse is long, with as many dashes.
        const double stretch = stretchOf(line.toImage);
        QList<qreal> dashes = pen.dashPattern();
        for (qreal& dash : dashes) {
            dash /= stretch;
        }
        pen.setWidthF(pen.widthF() * stretch);
        if (pen.style() == Qt::CustomDashLine) {
            pen.setDashPattern(dashes);
        }
    }
    return strokeCost(line.toImage.map(line.line), pen, sheet, EdgeLook::Smooth) +
           fillCost(line.heads, sheet, EdgeLook::Smooth);
}

void paintPlusLine(QPainter& painter, const PlusLine& line) {
    if (line.roundNib) {
        painter.strokePath(line.line, line.pen);
    } else {
        const QPainterPathStroker stroker(line.pen);
        painter.fillPath(line.toImage.map(stroker.createStroke(line.line)), line.pen.brush());
    }
    if (!line.heads.isEmpty()) {
        painter.fillPath(line.heads, line.pen.brush());
    }
}

// From the outermost line inwards: each gap and each line inside of it is painted with a narrower
// pen, gaps by taking away.
void paintPlusLines(QPainter& painter, const PlusLine& line, const std::vector<double>& edges,
                    const QRect& touched) {
    constexpr double kNarrowest = 3; // image pixels: gaps would be none
    constexpr std::size_t kMostEdges = 8;
    const double width = line.pen.widthF();
    QImage layer(touched.size(), QImage::Format_ARGB32_Premultiplied);
    if (width < kNarrowest || layer.isNull()) {
        paintPlusLine(painter, line);
        return;
    }
    layer.fill(Qt::transparent);
    QPainter layerPainter(&layer);
    layerPainter.setRenderHint(QPainter::Antialiasing);
    layerPainter.translate(-touched.topLeft());
    PlusLine part = line;
    for (std::size_t i = 0; i < std::min(edges.size(), kMostEdges); ++i) {
        const double share = 1 - 2 * edges[i];
        if (share <= 0) {
            break;
        }
        part.pen.setWidthF(width * share);
        if (line.pen.style() == Qt::CustomDashLine) {
            QList<qreal> dashes = line.pen.dashPattern();
            for (qreal& dash : dashes) {
                dash /= share;
            }
            part.pen.setDashPattern(dashes);
            part.pen.setDashOffset(line.pen.dashOffset() / share);
        }
        layerPainter.setCompositionMode(i % 2 == 0 ? QPainter::CompositionMode_SourceOver
                                                   : QPainter::CompositionMode_Clear);
        paintPlusLine(layerPainter, part);
        part.heads = {};
    }
    layerPainter.end();
    painter.drawImage(touched.topLeft(), layer);
}

} // namespace metafile
