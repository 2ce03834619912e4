#include "imaging/metafile/canvas.h"

#include "imaging/byte_reader.h"

#include <cmath>
#include <utility>

namespace imaging::metafile {

void Clip::become(QRegion region) {
    bounded_ = true;
    region_ = std::move(region);
    paths_.clear();
}

void Clip::intersect(const QRegion& region) {
    region_ = bounded_ ? region_.intersected(region) : region;
    bounded_ = true;
}

void Clip::intersect(const QPainterPath& path) {
    // Each path costs time whenever something is drawn; many together are better kept as pixels.
    constexpr std::size_t kMostPaths = 4;
    paths_.push_back(path);
    if (paths_.size() > kMostPaths) {
        const QRect all = path.controlPointRect().toAlignedRect();
        become(toRegion(all));
    }
}

void Clip::intersect(const Clip& other) {
    if (other.bounded_)
        intersect(other.region_);
    for (const QPainterPath& path : other.paths_)
        intersect(path);
}

void Clip::subtract(const QRegion& region, const QRect& sheet) {
    become(toRegion(sheet).subtracted(region));
}

void Clip::unite(const QRegion& region, const QRect& sheet) {
    if (!isEverything())
        become(toRegion(sheet).united(region));
}

void Clip::exclusiveOr(const QRegion& region, const QRect& sheet) {
    become(toRegion(sheet).xored(region));
}

void Clip::translate(QPointF offset) {
    region_.translate(offset.toPoint());
    for (QPainterPath& path : paths_)
        path.translate(offset);
}

QRegion Clip::toRegion(const QRect& sheet) const {
    QRegion region = bounded_ ? region_.intersected(sheet) : QRegion(sheet);
    for (const QPainterPath& path : paths_)
        region &= regionOf(path, sheet);
    return region;
}

void Clip::applyTo(QPainter& painter) const {
    if (isEverything()) {
        painter.setClipping(false);
        return;
    }
    // Paths alone need a first clip that replaces the painter's old one.
    if (bounded_)
        painter.setClipRegion(region_, Qt::ReplaceClip);
    bool replace = !bounded_;
    for (const QPainterPath& path : paths_) {
        painter.setClipPath(path, replace ? Qt::ReplaceClip : Qt::IntersectClip);
        replace = false;
    }
}

QRegion regionOf(const QPainterPath& path, const QRect& sheet) {
    const QRect bounds = path.controlPointRect().toAlignedRect() & sheet;
    if (bounds.isEmpty())
        return {};
    QImage mask(bounds.size(), QImage::Format_ARGB32_Premultiplied);
    if (mask.isNull())
        return {};
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.translate(-bounds.topLeft());
    painter.fillPath(path, Qt::black);
    painter.end();
    QRegion region;
    for (int y = 0; y < mask.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        int x = 0;
        while (x < mask.width()) {
            const int begin = x;
            while (x < mask.width() && row[x] != 0)
                ++x;
            if (x > begin)
                region += QRect(bounds.left() + begin, bounds.top() + y, x - begin, 1);
            while (x < mask.width() && row[x] == 0)
                ++x;
        }
    }
    return region;
}

Canvas::Canvas(QSize size, const QTransform& deviceToImage, WorkBudget& budget)
    : image_(size, QImage::Format_RGB32),
      deviceToImage_(deviceToImage),
      scale_(std::sqrt(std::abs(deviceToImage.determinant()))),
      budget_(budget) {
    if (image_.isNull())
        throw DecodeError("there is no memory for the picture");
    image_.fill(Qt::white);
    painter_.begin(&image_);
}

QImage Canvas::take() {
    painter_.end();
    return std::move(image_);
}

} // namespace imaging::metafile
