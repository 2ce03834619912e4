#include "metafile/plus_drawing/plus_path_gradient.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace metafile {

namespace {

constexpr std::size_t kSteps = 256; // from the edge to the centre

QRgb mixed(QRgb from, QRgb to, double share) {
    const auto channel = [&](int first, int second) {
        return static_cast<int>(std::lround(first + (second - first) * share));
    };
    return qRgba(channel(qRed(from), qRed(to)), channel(qGreen(from), qGreen(to)),
                 channel(qBlue(from), qBlue(to)), channel(qAlpha(from), qAlpha(to)));
}

// Steps between positions that do not fall, each with a value that `between` mixes.
template <typename Value, typename Stop, typename Between>
std::array<Value, kSteps> tableOf(const std::vector<Stop>& stops, Between between) {
    std::array<Value, kSteps> table{};
    std::size_t next = 0;
    for (std::size_t step = 0; step < kSteps; ++step) {
        const double at = static_cast<double>(step) / (kSteps - 1);
        while (next < stops.size() && stops[next].at < at) {
            ++next;
        }
        if (next == 0 || next == stops.size()) {
            const Stop& stop = next == 0 ? stops.front() : stops.back();
            table[step] = between(stop, stop, 0.0);
            continue;
        }
        const Stop& before = stops[next - 1];
        const Stop& after = stops[next];
        const double room = after.at - before.at;
        table[step] = between(before, after, room > 0 ? (at - before.at) / room : 1.0);
    }
    return table;
}

class Shading {
  public:
    explicit Shading(const PlusBrush& brush)
        : centre_(brush.colour),
          focus_(std::clamp(std::min(brush.focus.x(), brush.focus.y()), 0.0, 0.99)),
          hasColours_(!brush.stops.empty()) {
        if (hasColours_) {
            colours_ = tableOf<QRgb>(brush.stops,
                                     [](const PlusStop& one, const PlusStop& other, double share) {
                                         return mixed(one.colour, other.colour, share);
                                     });
            return;
        }
        const std::vector<PlusShare> straight{{0, 0}, {1, 1}};
        shares_ = tableOf<double>(brush.shares.empty() ? straight : brush.shares,
                                  [](const PlusShare& one, const PlusShare& other, double share) {
                                      return one.share + (other.share - one.share) * share;
                                  });
    }

    // `way`: 0 on the edge, where the colour is `edge`, 1 in the centre. Premultiplied.
    QRgb at(double way, QRgb edge) const {
        const double shifted = std::clamp(way / (1 - focus_), 0.0, 1.0);
        const auto step = static_cast<std::size_t>(std::lround(shifted * (kSteps - 1)));
        return qPremultiply(hasColours_ ? colours_[step] : mixed(edge, centre_, shares_[step]));
    }

  private:
    QRgb centre_;
    double focus_;
    bool hasColours_;
    std::array<QRgb, kSteps> colours_{};
    std::array<double, kSteps> shares_{};
};

// The triangle between the centre and one side of the edge, and what lies a little behind it.
class Wedge {
  public:
    Wedge(QPointF centre, QPointF first, QPointF second)
        : centre_(centre), first_(first - centre), second_(second - centre) {
        area_ = first_.x() * second_.y() - first_.y() * second_.x();
        const QPointF side = second_ - first_;
        const double height = std::abs(area_) / std::hypot(side.x(), side.y());
        constexpr double kBehind = 2; // pixels
        constexpr double kLowest = 0.01;
        reach_ = height > kLowest ? 1 + std::min(kBehind / height, kBehind) : 0;
    }

    QRect touched(const QRect& sheet) const {
        if (!(reach_ > 0)) {
            return {};
        }
        const QPolygonF corners{centre_, centre_ + first_ * reach_, centre_ + second_ * reach_};
        return (corners.boundingRect() & QRectF(sheet)).toAlignedRect() & sheet;
    }

    void paint(QImage& layer, const QRect& touched, const Shading& shading, QRgb firstColour,
               QRgb secondColour) const {
        for (int y = touched.top(); y <= touched.bottom(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(layer.scanLine(y));
            for (int x = touched.left(); x <= touched.right(); ++x) {
                const QPointF at = QPointF(x + 0.5, y + 0.5) - centre_;
                const double first = (at.x() * second_.y() - at.y() * second_.x()) / area_;
                const double second = (first_.x() * at.y() - first_.y() * at.x()) / area_;
                constexpr double kTouching = -1e-6;
                const double out = first + second;
                if (first < kTouching || second < kTouching || out > reach_) {
                    continue;
                }
                const double share = out > 0 ? std::clamp(second / out, 0.0, 1.0) : 0;
                const QRgb edge = firstColour == secondColour
                                      ? firstColour
                                      : mixed(firstColour, secondColour, share);
                row[x] = shading.at(1 - out, edge);
            }
        }
    }

  private:
    QPointF centre_;
    QPointF first_; // from the centre
    QPointF second_;
    double area_ = 0;
    double reach_ = 0; // from the centre, 1 is the side
};

bool isSensible(const QRectF& box) {
    constexpr double kFarthest = 1e7; // pixels
    return box.left() > -kFarthest && box.top() > -kFarthest && box.right() < kFarthest &&
           box.bottom() < kFarthest;
}

} // namespace

void paintPathGradient(QImage& layer, const PlusBrush& brush, const QTransform& toLayer,
                       WorkBudget& budget) {
    constexpr double kCostOfPixel = 8;
    const QPolygonF edge = toLayer.map(brush.boundary).toFillPolygon();
    const QPointF centre = toLayer.map(brush.centre);
    if (!isSensible(edge.boundingRect()) || !isSensible(QRectF(centre, QSizeF(1, 1)))) {
        return;
    }
    const Shading shading(brush);
    const auto colourAt = [&](qsizetype point) {
        const std::size_t last = brush.surroundings.size() - 1;
        return brush.surroundings[std::min(static_cast<std::size_t>(point), last)];
    };
    for (qsizetype i = 0; i + 1 < edge.size(); ++i) {
        const Wedge wedge(centre, edge[i], edge[i + 1]);
        const QRect touched = wedge.touched(layer.rect());
        budget.spendPoints(1);
        budget.spendPixels(kCostOfPixel * touched.width() * touched.height());
        const bool isLast = i + 2 == edge.size() && edge.isClosed();
        wedge.paint(layer, touched, shading, colourAt(i), colourAt(isLast ? 0 : i + 1));
    }
}

} // namespace metafile
