#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace samples {

const QColor kInk(0x2B, 0x36, 0x41);
const QColor kPaper(0xFF, 0xFF, 0xFF);
const QColor kShade(0x76, 0x82, 0x8D);
const Colours kBlue{{0x4F, 0x7F, 0xAD}, {0x86, 0xAD, 0xD0}, {0x38, 0x5F, 0x88}};
const Colours kSteel{{0xBC, 0xC6, 0xCF}, {0xE6, 0xEB, 0xEF}, {0x8F, 0x9C, 0xA8}};
const Colours kGreen{{0x5F, 0xA2, 0x6E}, {0x93, 0xC6, 0x9D}, {0x43, 0x7B, 0x4F}};
const Colours kAmber{{0xDD, 0x9A, 0x45}, {0xF0, 0xC0, 0x83}, {0xAF, 0x72, 0x29}};
const Colours kRed{{0xC4, 0x57, 0x50}, {0xDF, 0x8B, 0x85}, {0x94, 0x3A, 0x35}};
const Colours kWater{{0x6B, 0xB0, 0xD8}, {0x9C, 0xCD, 0xE8}, {0x4A, 0x8D, 0xB8}};

namespace {

std::vector<QPointF> rectPoints(const QRectF& box) {
    return {box.topLeft(), box.topRight(), box.bottomRight(), box.bottomLeft()};
}

std::vector<QPointF> roundedPoints(const QRectF& box, double radius) {
    const double side = 2 * std::min({radius, box.width() / 2, box.height() / 2});
    if (side <= 0) {
        return rectPoints(box);
    }
    std::vector<QPointF> points;
    const auto corner = [&](double left, double top, double from) {
        const auto part = arcPoints({left, top, side, side}, from, from + 90);
        points.insert(points.end(), part.begin(), part.end());
    };
    corner(box.left(), box.top(), 180);
    corner(box.right() - side, box.top(), 270);
    corner(box.right() - side, box.bottom() - side, 0);
    corner(box.left(), box.bottom() - side, 90);
    return points;
}

// The part of a convex outline whose points satisfy low <= coordinate <= high, cut straight.
std::vector<QPointF> band(const std::vector<QPointF>& outline, Qt::Orientation across, double low,
                          double high) {
    std::vector<QPointF> points = outline;
    for (auto& point : points) {
        if (across == Qt::Horizontal) {
            point.setX(std::clamp(point.x(), low, high));
        } else {
            point.setY(std::clamp(point.y(), low, high));
        }
    }
    return points;
}

// The strokes of the letters on a sheet of one by one.
std::vector<std::vector<QPointF>> strokesOf(char letter) {
    switch (letter) {
    case 'F':
        return {{{0.9, 0}, {0.1, 0}, {0.1, 1}}, {{0.1, 0.48}, {0.75, 0.48}}};
    case 'I':
        return {{{0.5, 0}, {0.5, 1}}};
    case 'L':
        return {{{0.15, 0}, {0.15, 1}, {0.9, 1}}};
    case 'M':
        return {{{0, 1}, {0, 0}, {0.5, 0.7}, {1, 0}, {1, 1}}};
    case 'P':
        return {{{0.1, 1},
                 {0.1, 0},
                 {0.6, 0},
                 {0.85, 0.1},
                 {0.92, 0.27},
                 {0.85, 0.44},
                 {0.6, 0.54},
                 {0.1, 0.54}}};
    case 'T':
        return {{{0.05, 0}, {0.95, 0}}, {{0.5, 0}, {0.5, 1}}};
    default:
        throw std::invalid_argument("no strokes for this letter");
    }
}

} // namespace

std::vector<QPointF> arcPoints(const QRectF& box, double fromDegrees, double toDegrees) {
    const int steps = std::max(2, static_cast<int>(std::abs(toDegrees - fromDegrees) / 7.5));
    std::vector<QPointF> points;
    for (int step = 0; step <= steps; ++step) {
        const double angle =
            (fromDegrees + (toDegrees - fromDegrees) * step / steps) * std::numbers::pi / 180;
        points.emplace_back(box.center().x() + box.width() / 2 * std::cos(angle),
                            box.center().y() + box.height() / 2 * std::sin(angle));
    }
    return points;
}

std::vector<double> steps(double from, double end, double step) {
    const int count = std::max(0, static_cast<int>(std::ceil((end - from) / step)));
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        values.push_back(from + index * step);
    }
    return values;
}

Drawing fitted(const Drawing& drawing, const QRectF& box, QSizeF sheet) {
    const double scale =
        std::min(box.width() / drawing.size.width(), box.height() / drawing.size.height());
    const QPointF origin =
        box.center() - QPointF(drawing.size.width() / 2 * scale, drawing.size.height() / 2 * scale);
    Drawing result{sheet, drawing.shapes};
    for (auto& shape : result.shapes) {
        shape.lineWidth *= scale;
        for (auto& point : shape.points) {
            point = point * scale + origin;
        }
    }
    return result;
}

Sketch& Sketch::line(const QColor& colour, double width) {
    line_ = colour;
    lineWidth_ = width;
    return *this;
}

Sketch& Sketch::noLine() {
    lineWidth_ = 0;
    return *this;
}

Sketch& Sketch::fill(const QColor& colour) {
    fill_ = colour;
    return *this;
}

Sketch& Sketch::noFill() {
    fill_ = QColor();
    return *this;
}

Sketch& Sketch::add(Outline outline, std::vector<QPointF> points) {
    const QColor inside = outline == Outline::Polyline ? QColor() : fill_;
    drawing_.shapes.push_back({outline, std::move(points), line_, lineWidth_, inside});
    return *this;
}

Sketch& Sketch::rect(const QRectF& box) {
    return add(Outline::Polygon, rectPoints(box));
}

Sketch& Sketch::roundedRect(const QRectF& box, double radius) {
    return add(Outline::Polygon, roundedPoints(box, radius));
}

Sketch& Sketch::ellipse(const QRectF& box) {
    return add(Outline::Ellipse, {box.topLeft(), box.bottomRight()});
}

Sketch& Sketch::circle(QPointF centre, double radius) {
    return ellipse({centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius});
}

Sketch& Sketch::polygon(std::vector<QPointF> points) {
    return add(Outline::Polygon, std::move(points));
}

Sketch& Sketch::polyline(std::vector<QPointF> points) {
    return add(Outline::Polyline, std::move(points));
}

Sketch& Sketch::arc(const QRectF& box, double fromDegrees, double toDegrees) {
    return polyline(arcPoints(box, fromDegrees, toDegrees));
}

Sketch& Sketch::letter(char letter, const QRectF& box) {
    for (auto& stroke : strokesOf(letter)) {
        for (auto& point : stroke) {
            point = {box.left() + point.x() * box.width(), box.top() + point.y() * box.height()};
        }
        polyline(stroke);
    }
    return *this;
}

Sketch& Sketch::place(const Drawing& drawing, const QRectF& box) {
    auto moved = fitted(drawing, box, drawing_.size);
    drawing_.shapes.insert(drawing_.shapes.end(), moved.shapes.begin(), moved.shapes.end());
    return *this;
}

Sketch& Sketch::uprightCylinder(const QRectF& box, const Colours& colours, double radius) {
    const auto outline = roundedPoints(box, radius);
    const auto at = [&](double share) { return box.left() + share * box.width(); };
    noLine().fill(colours.base).polygon(outline);
    fill(colours.light).polygon(band(outline, Qt::Horizontal, at(0.12), at(0.32)));
    fill(colours.dark).polygon(band(outline, Qt::Horizontal, at(0.76), at(1)));
    return line(kInk).noFill().polygon(outline);
}

Sketch& Sketch::lyingCylinder(const QRectF& box, const Colours& colours, double radius) {
    const auto outline = roundedPoints(box, radius);
    const auto at = [&](double share) { return box.top() + share * box.height(); };
    noLine().fill(colours.base).polygon(outline);
    fill(colours.light).polygon(band(outline, Qt::Vertical, at(0.12), at(0.32)));
    fill(colours.dark).polygon(band(outline, Qt::Vertical, at(0.76), at(1)));
    return line(kInk).noFill().polygon(outline);
}

} // namespace samples
