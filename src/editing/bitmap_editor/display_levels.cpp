#include "editing/bitmap_editor/display_levels.h"

#include <QPaintDevice>
#include <QPainter>

#include <algorithm>

namespace editing {
namespace {

int longerSide(const QImage& level) {
    return std::max(level.width(), level.height());
}

// Half of it in both directions, but no longer than what the toolkit can scale smoothly to: with
// more than 2^17 pixels in a row it leaves the range of its numbers.
QSize nextSize(const QSize& size) {
    constexpr int kLongest = 100'000;
    QSize next = size / 2;
    if (std::max(next.width(), next.height()) > kLongest) {
        next.scale(kLongest, kLongest, Qt::KeepAspectRatio);
    }
    return next.expandedTo(QSize(1, 1));
}

} // namespace

DisplayLevels::DisplayLevels(const QImage& picture) {
    constexpr int kSmallEnough = 512; // pixels: reading all of them costs nothing
    if (picture.isNull()) {
        return;
    }
    levels_.push_back(picture);
    while (longerSide(levels_.back()) > kSmallEnough) {
        const QImage half = levels_.back().scaled(nextSize(levels_.back().size()),
                                                  Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (half.isNull()) {
            return;
        }
        levels_.push_back(half);
    }
}

// The smallest one that need not be enlarged for that scale.
const QImage& DisplayLevels::levelFor(double scale) const {
    const double wanted = longerSide(levels_.front()) * scale;
    std::size_t level = 0;
    while (level + 1 < levels_.size() && longerSide(levels_[level + 1]) >= wanted) {
        ++level;
    }
    return levels_[level];
}

void DisplayLevels::paint(QPainter& painter, const QRectF& place, const QRect& visible) const {
    if (isEmpty() || place.isEmpty()) {
        return;
    }
    const double ratio = painter.device()->devicePixelRatio();
    const QImage& level = levelFor(place.width() * ratio / levels_.front().width());
    const double across = place.width() / level.width();
    const double down = place.height() / level.height();
    const QRectF wanted((visible.left() - place.left()) / across,
                        (visible.top() - place.top()) / down, visible.width() / across,
                        visible.height() / down);
    // Another pixel on all sides, so that smoothing knows the neighbours.
    const QRect source = wanted.toAlignedRect().adjusted(-1, -1, 1, 1) & level.rect();
    const QRectF target(place.left() + source.left() * across, place.top() + source.top() * down,
                        source.width() * across, source.height() * down);
    painter.save();
    painter.setClipRect(visible, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, across * ratio < 2);
    painter.drawImage(target, level, source);
    painter.restore();
}

} // namespace editing
