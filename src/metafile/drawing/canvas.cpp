#include "metafile/drawing/canvas.h"

#include "imaging/byte_reader.h"
#include "metafile/bounds/drawing_costs.h"
#include "metafile/bounds/outline_cutting.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace metafile {

void Clip::become(QRegion region) {
    bounded_ = true;
    region_ = std::move(region);
    paths_.clear();
}

void Clip::intersect(const QRegion& region, const QRect& sheet) {
    region_ = bounded_ ? region_.intersected(region) : region;
    bounded_ = true;
    if (isCrowded()) {
        become(toRegion(sheet));
    }
}

void Clip::intersect(const QPainterPath& path, const QRect& sheet) {
    paths_.push_back(cutArea(path, sheet));
    if (isCrowded()) {
        become(toRegion(sheet));
    }
}

// Each path costs time whenever the clip is applied, and the painter needs the square of it to cut
// one intricate shape by another: then they are better kept as pixels.
bool Clip::isCrowded() const {
    constexpr std::size_t kMostPaths = 4;
    constexpr std::size_t kIntricate = 1000;
    const bool several = paths_.size() > 1 || (bounded_ && region_.rectCount() > 1);
    return paths_.size() > kMostPaths || (!paths_.empty() && several && weight() > kIntricate);
}

void Clip::intersect(const Clip& other, const QRect& sheet) {
    if (other.bounded_) {
        intersect(other.region_, sheet);
    }
    for (const QPainterPath& path : other.paths_) {
        intersect(path, sheet);
    }
}

void Clip::combine(const QRegion& region, ClipMode mode, const QRect& sheet) {
    switch (mode) {
    case ClipMode::Copy:
        *this = {};
        intersect(region, sheet);
        return;
    case ClipMode::And:
        intersect(region, sheet);
        return;
    case ClipMode::Or:
        if (!isEverything()) {
            become(toRegion(sheet).united(region));
        }
        return;
    case ClipMode::Xor:
        become(toRegion(sheet).xored(region));
        return;
    case ClipMode::Difference:
        become(toRegion(sheet).subtracted(region));
        return;
    case ClipMode::Complement:
        become(region.subtracted(toRegion(sheet)));
        return;
    }
}

void Clip::translate(QPointF offset) {
    // Farther than any sheet is as good as any distance.
    constexpr double kFarthest = 1e6;
    offset = {std::clamp(offset.x(), -kFarthest, kFarthest),
              std::clamp(offset.y(), -kFarthest, kFarthest)};
    region_.translate(offset.toPoint());
    for (QPainterPath& path : paths_) {
        path.translate(offset);
    }
}

QRegion Clip::toRegion(const QRect& sheet) const {
    QRegion region = bounded_ ? region_.intersected(sheet) : QRegion(sheet);
    for (const QPainterPath& path : paths_) {
        region &= regionOf(path, sheet);
    }
    return region;
}

void Clip::applyTo(QPainter& painter, const QRect& sheet) const {
    if (isEverything()) {
        // Not switched off: Qt 6.4 would leave it off when a region of many rectangles comes next.
        painter.setClipRect(sheet, Qt::ReplaceClip);
        return;
    }
    // Paths alone need a first clip that replaces the painter's old one.
    if (bounded_) {
        painter.setClipRegion(region_, Qt::ReplaceClip);
    }
    bool replace = !bounded_;
    for (const QPainterPath& path : paths_) {
        painter.setClipPath(path, replace ? Qt::ReplaceClip : Qt::IntersectClip);
        replace = false;
    }
}

double Clip::cost(const QRect& sheet) const {
    double cost = bounded_ ? regionCost(region_) : 0;
    for (const QPainterPath& path : paths_) {
        cost += fillCost(path, sheet, EdgeLook::Smooth);
    }
    return cost;
}

std::size_t Clip::weight() const {
    std::size_t weight = bounded_ ? static_cast<std::size_t>(region_.rectCount()) : 0;
    for (const QPainterPath& path : paths_) {
        weight += static_cast<std::size_t>(path.elementCount());
    }
    return weight;
}

namespace {

bool isStraight(double from, double to) {
    constexpr double kSame = 0.01;
    return std::abs(from - to) < kSame;
}

// Of lines and edges alike, so that a frame's lines lie on its filling's edges.
double nearestPixel(double value) {
    return std::floor(value + 0.5);
}

// The same for whole pixels. A place far beyond every sheet stays there, and any two such places
// have a distance that fits too.
int nearestWholePixel(double value) {
    constexpr double kFarthest = 1 << 29;
    return static_cast<int>(std::clamp(nearestPixel(value), -kFarthest, kFarthest));
}

double pixelMiddle(double value) {
    return nearestPixel(value) + 0.5;
}

} // namespace

QPainterPath sharpened(const QPainterPath& outline) {
    constexpr int kMostElements = 2000;
    if (outline.elementCount() > kMostElements) {
        return outline;
    }
    QPainterPath path = outline;
    for (int i = 1; i < outline.elementCount(); ++i) {
        const auto from = outline.elementAt(i - 1);
        const auto to = outline.elementAt(i);
        if (to.type != QPainterPath::LineToElement) {
            continue;
        }
        const auto movedFrom = path.elementAt(i - 1);
        const auto movedTo = path.elementAt(i);
        if (isStraight(from.x, to.x)) {
            path.setElementPositionAt(i - 1, pixelMiddle(from.x), movedFrom.y);
            path.setElementPositionAt(i, pixelMiddle(from.x), movedTo.y);
        } else if (isStraight(from.y, to.y)) {
            path.setElementPositionAt(i - 1, movedFrom.x, pixelMiddle(from.y));
            path.setElementPositionAt(i, movedTo.x, pixelMiddle(from.y));
        }
    }
    return path;
}

std::optional<QRect> rectangleOf(const QPainterPath& outline) {
    constexpr int kCorners = 5; // the first one twice
    if (outline.elementCount() < kCorners - 1 || outline.elementCount() > kCorners) {
        return std::nullopt;
    }
    for (int i = 1; i < outline.elementCount(); ++i) {
        const auto from = outline.elementAt(i - 1);
        const auto to = outline.elementAt(i);
        const bool across = isStraight(from.y, to.y);
        const bool down = isStraight(from.x, to.x);
        if (to.type != QPainterPath::LineToElement || (!across && !down)) {
            return std::nullopt;
        }
    }
    const QRectF box = outline.controlPointRect();
    const int left = nearestWholePixel(box.left());
    const int top = nearestWholePixel(box.top());
    const int right = nearestWholePixel(box.right());
    const int bottom = nearestWholePixel(box.bottom());
    const double corners = box.width() * box.height();
    // Two strokes there and back, or a figure like an hourglass, are no rectangle.
    double area = 0;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPointF from = outline.elementAt(i);
        const QPointF to = outline.elementAt((i + 1) % outline.elementCount());
        area += (from.x() * to.y() - to.x() * from.y()) / 2;
    }
    if (std::abs(std::abs(area) - corners) > 0.01 * corners) {
        return std::nullopt;
    }
    return QRect(left, top, std::max(1, right - left), std::max(1, bottom - top));
}

QRegion regionOf(const QPainterPath& path, const QRect& sheet) {
    const QRect bounds = path.controlPointRect().toAlignedRect() & sheet;
    if (bounds.isEmpty()) {
        return {};
    }
    QImage mask(bounds.size(), QImage::Format_ARGB32_Premultiplied);
    if (mask.isNull()) {
        return {};
    }
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.translate(-bounds.topLeft());
    painter.fillPath(cutArea(path, sheet), Qt::black);
    painter.end();
    QRegion region;
    for (int y = 0; y < mask.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        int x = 0;
        while (x < mask.width()) {
            const int begin = x;
            while (x < mask.width() && row[x] != 0) {
                ++x;
            }
            if (x > begin) {
                region += QRect(bounds.left() + begin, bounds.top() + y, x - begin, 1);
            }
            while (x < mask.width() && row[x] == 0) {
                ++x;
            }
        }
    }
    return region;
}

QRegion unionOf(std::span<const QRect> rectangles, WorkBudget& budget) {
    if (rectangles.size() <= 1) {
        return rectangles.empty() ? QRegion() : QRegion(rectangles.front());
    }
    // Halves first: one by one would copy the whole region as often as there are rectangles.
    const auto middle = rectangles.size() / 2;
    QRegion both =
        unionOf(rectangles.first(middle), budget) | unionOf(rectangles.subspan(middle), budget);
    budget.spendPixels(regionCost(both));
    return both;
}

QPainterPath pathOf(const QRegion& region) {
    constexpr int kMostRectangles = 200'000;
    if (region.rectCount() > kMostRectangles) {
        throw WorkExhausted();
    }
    QPainterPath path;
    path.addRegion(region);
    return path;
}

Canvas::Canvas(QSize size, const QTransform& deviceToImage, WorkBudget& budget, Surface surface)
    : size_(size),
      surface_(surface),
      deviceToImage_(deviceToImage),
      scale_(std::sqrt(std::abs(deviceToImage.determinant()))),
      budget_(budget) {
    if (surface_ == Surface::Recording) {
        painter_.begin(&recording_);
        return;
    }
    image_ = QImage(size, QImage::Format_RGB32);
    if (image_.isNull()) {
        throw imaging::DecodeError("there is no memory for the picture");
    }
    budget_.spendPixels(double{1} * size.width() * size.height());
    image_.fill(Qt::white);
    painter_.begin(&image_);
}

void Canvas::clipTo(const Clip& clip, const Clip& besides) {
    budget_.spendPixels(clip.cost(sheet()) + besides.cost(sheet()));
    Clip whole = clip;
    whole.intersect(besides, sheet());
    if (surface_ == Surface::Recording) { // nothing else ends what is painted at the sheet's edges
        whole.intersect(QRegion(sheet()), sheet());
    }
    whole.applyTo(painter_, sheet());
}

void Canvas::setMode(QPainter::CompositionMode mode) {
    if (surface_ == Surface::Recording && mode != QPainter::CompositionMode_SourceOver) {
        throw PixelsNeeded();
    }
    painter_.setCompositionMode(mode);
}

QImage& Canvas::pixels() {
    if (surface_ == Surface::Recording) {
        throw PixelsNeeded();
    }
    return image_;
}

void Canvas::renewPainter() {
    if (surface_ == Surface::Recording) { // which would begin anew
        return;
    }
    const QPainter::RenderHints hints = painter_.renderHints();
    painter_.end();
    painter_.begin(&image_);
    painter_.setRenderHints(painter_.renderHints(), false);
    painter_.setRenderHints(hints);
}

QImage Canvas::take() {
    painter_.end();
    return std::move(image_);
}

QPicture Canvas::takeRecording() {
    painter_.end();
    return recording_;
}

} // namespace metafile
