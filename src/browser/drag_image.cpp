#include "browser/drag_image.h"

#include "app/colours.h"
#include "browser/picture_painting.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>

namespace browser {
namespace {

// Device-independent pixels.
constexpr double kSheet = 56;
constexpr double kShift = 5; // of each sheet that lies below
constexpr double kPadding = 4;
constexpr double kCorner = 4;
constexpr double kBadge = 20;
constexpr int kMostBelow = 2;

QImage reduced(const QImage& image, const QSizeF& most, double ratio) {
    if (image.width() <= most.width() && image.height() <= most.height()) {
        return image;
    }
    QImage small = image.scaled(most.toSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    small.setDevicePixelRatio(ratio);
    return small;
}

void paintSheets(QPainter& painter, qsizetype below, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    painter.setPen(app::between(palette.color(QPalette::Text), base, 0.6));
    painter.setBrush(base);
    for (auto i = below; i >= 0; --i) {
        const auto shift = kShift * static_cast<double>(i) + 0.5;
        painter.drawRoundedRect(QRectF(shift, shift, kSheet, kSheet), kCorner, kCorner);
    }
}

void paintNumber(QPainter& painter, qsizetype number, double extent, const QPalette& palette) {
    const QString text = QString::number(number);
    const double width =
        std::max(kBadge, painter.fontMetrics().horizontalAdvance(text) + kBadge / 2);
    const QRectF badge(extent - width, extent - kBadge, width - 1, kBadge - 1);
    painter.setPen(palette.color(QPalette::Base));
    painter.setBrush(palette.color(QPalette::Highlight));
    painter.drawRoundedRect(badge, kBadge / 2, kBadge / 2);
    painter.setPen(palette.color(QPalette::HighlightedText));
    painter.drawText(badge, Qt::AlignCenter, text);
}

} // namespace

QPixmap dragImage(const QImage& thumbnail, qsizetype pictures, const QWidget& widget) {
    const qsizetype below = std::min<qsizetype>(pictures - 1, kMostBelow);
    // No larger than what is painted: without a compositor the rest hides what lies below.
    const double extent =
        kSheet + static_cast<double>(below) * kShift + 1 + (pictures > 1 ? kBadge / 4 : 0);
    const double ratio = widget.devicePixelRatioF();
    QPixmap pixmap((QSizeF(extent, extent) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    paintSheets(painter, below, widget.palette());
    if (!thumbnail.isNull()) {
        const QRectF area =
            QRectF(0, 0, kSheet, kSheet).adjusted(kPadding, kPadding, -kPadding, -kPadding);
        paintCentred(painter, reduced(thumbnail, area.size() * ratio, ratio), area,
                     widget.palette());
    }
    if (pictures > 1) {
        paintNumber(painter, pictures, extent, widget.palette());
    }
    return pixmap;
}

} // namespace browser
