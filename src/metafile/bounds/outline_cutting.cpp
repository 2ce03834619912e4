#include "metafile/bounds/outline_cutting.h"

#include <QPolygonF>
#include <QTransform>

#include <algorithm>
#include <array>
#include <iterator>

namespace metafile {

namespace {

constexpr double kMargin = 1000; // image pixels; less is no matter to the painter

bool isWithin(const QPainterPath& outline, const QRectF& bounds) {
    const QRectF box = outline.controlPointRect();
    return box.left() >= bounds.left() && box.top() >= bounds.top() &&
           box.right() <= bounds.right() && box.bottom() <= bounds.bottom();
}

template <typename Take>
void forEachFigure(const QPainterPath& outline, Take take) {
    QPainterPath figure;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const auto element = outline.elementAt(i);
        if (element.type == QPainterPath::MoveToElement) {
            if (figure.elementCount() > 1) {
                take(figure);
            }
            figure = QPainterPath(element);
        } else if (element.type == QPainterPath::LineToElement) {
            figure.lineTo(element);
        } else if (i + 2 < outline.elementCount()) {
            figure.cubicTo(element, outline.elementAt(i + 1), outline.elementAt(i + 2));
            i += 2;
        }
    }
    if (figure.elementCount() > 1) {
        take(figure);
    }
}

// Its curves as lines, as finely as the painter would make them.
QPolygonF flattened(const QPainterPath& figure) {
    constexpr double kFineness = 8;
    const auto polygons = figure.toSubpathPolygons(QTransform::fromScale(kFineness, kFineness));
    if (polygons.isEmpty()) {
        return {};
    }
    return QTransform::fromScale(1 / kFineness, 1 / kFineness).map(polygons.front());
}

// How far a point is inside of each side.
std::array<double, 4> insets(QPointF point, const QRectF& bounds) {
    return {point.x() - bounds.left(), bounds.right() - point.x(), point.y() - bounds.top(),
            bounds.bottom() - point.y()};
}

// The polygon's part on the inner side of one side, closed along that side.
QPolygonF cutAt(const QPolygonF& polygon, const QRectF& bounds, std::size_t side) {
    QPolygonF result;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon[i == 0 ? polygon.size() - 1 : i - 1];
        const QPointF to = polygon[i];
        const double before = insets(from, bounds).at(side);
        const double after = insets(to, bounds).at(side);
        if ((before < 0) != (after < 0)) {
            result.append(from + (to - from) * (before / (before - after)));
        }
        if (after >= 0) {
            result.append(to);
        }
    }
    return result;
}

// A closed figure comes apart where it leaves the bounds. Begun out there, none of its corners on
// the sheet lies between its end and its beginning, where it would lose its join.
void beginOutside(QPolygonF& polygon, const QRectF& bounds) {
    if (!polygon.isClosed()) {
        return;
    }
    const auto outside = std::find_if(polygon.begin(), polygon.end(), [&](QPointF point) {
        const auto inset = insets(point, bounds);
        return *std::min_element(inset.begin(), inset.end()) < 0;
    });
    if (outside == polygon.begin() || outside == polygon.end()) {
        return;
    }
    const auto start = std::distance(polygon.begin(), outside);
    polygon.removeLast(); // the same as the first
    std::rotate(polygon.begin(), polygon.begin() + start, polygon.end());
    polygon.append(QPointF(polygon.first()));
}

// Adds the part of a line that lies within the bounds; goes on where the last one ended.
void addLine(QPainterPath& path, QPointF from, QPointF to, const QRectF& bounds) {
    const auto before = insets(from, bounds);
    const auto after = insets(to, bounds);
    double begin = 0;
    double end = 1;
    for (std::size_t side = 0; side < before.size(); ++side) {
        if (before.at(side) < 0 && after.at(side) < 0) {
            return;
        }
        const double crossing = before.at(side) / (before.at(side) - after.at(side));
        if (before.at(side) < 0) {
            begin = std::max(begin, crossing);
        } else if (after.at(side) < 0) {
            end = std::min(end, crossing);
        }
    }
    if (begin > end) {
        return;
    }
    const QPointF first = begin > 0 ? from + (to - from) * begin : from;
    if (path.elementCount() == 0 || path.currentPosition() != first) {
        path.moveTo(first);
    }
    path.lineTo(end < 1 ? from + (to - from) * end : to);
}

} // namespace

QPainterPath cutArea(const QPainterPath& outline, const QRect& sheet) {
    const QRectF bounds = QRectF(sheet).adjusted(-kMargin, -kMargin, kMargin, kMargin);
    if (isWithin(outline, bounds)) {
        return outline;
    }
    QPainterPath result;
    result.setFillRule(outline.fillRule());
    forEachFigure(outline, [&](const QPainterPath& figure) {
        if (isWithin(figure, bounds)) {
            result.addPath(figure);
            return;
        }
        QPolygonF polygon = flattened(figure);
        for (std::size_t side = 0; side < 4; ++side) {
            polygon = cutAt(polygon, bounds, side);
        }
        if (!polygon.isEmpty()) {
            result.addPolygon(polygon);
            result.closeSubpath();
        }
    });
    return result;
}

QPainterPath cutLines(const QPainterPath& outline, const QRect& sheet, double reach) {
    const double margin = kMargin + reach;
    const QRectF bounds = QRectF(sheet).adjusted(-margin, -margin, margin, margin);
    if (isWithin(outline, bounds)) {
        return outline;
    }
    QPainterPath result;
    forEachFigure(outline, [&](const QPainterPath& figure) {
        if (isWithin(figure, bounds)) {
            result.addPath(figure);
            return;
        }
        QPolygonF polygon = flattened(figure);
        beginOutside(polygon, bounds);
        for (qsizetype i = 1; i < polygon.size(); ++i) {
            addLine(result, polygon[i - 1], polygon[i], bounds);
        }
    });
    return result;
}

} // namespace metafile
