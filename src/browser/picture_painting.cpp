#include "browser/picture_painting.h"

#include "app/colours.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

#include <algorithm>

namespace browser {

QImage fitted(const picture::Picture& picture, const QSizeF& area, double screenRatio) {
    QSizeF size = picture.facts().pixels;
    if (size.width() > area.width() || size.height() > area.height()) {
        size.scale(area, Qt::KeepAspectRatio);
    }
    const QSize device = (size * screenRatio).toSize().expandedTo({1, 1});
    QImage image = picture.scaledTo(device);
    if (!image.isNull() && size.width() > 0) {
        // A small picture has fewer pixels than the screen has for it.
        image.setDevicePixelRatio(std::max(image.width() / size.width(), 0.01));
    }
    return image;
}

void paintCentred(QPainter& painter, const QImage& image, const QRectF& area,
                  const QPalette& palette) {
    if (image.isNull()) {
        return;
    }
    const double ratio = image.devicePixelRatio();
    const QSizeF size(image.width() / ratio, image.height() / ratio);
    // Whole device pixels, so that nothing is blurred by half a pixel.
    const auto snapped = [&painter](double value) {
        const double scale = painter.device()->devicePixelRatio();
        return qRound(value * scale) / scale;
    };
    const QRectF target(QPointF(snapped(area.center().x() - size.width() / 2),
                                snapped(area.center().y() - size.height() / 2)),
                        size);
    if (image.hasAlphaChannel() && palette.color(QPalette::Base) != app::paperColor(palette)) {
        painter.fillRect(target.adjusted(-2, -2, 2, 2), app::paperColor(palette));
    }
    painter.drawImage(target, image);
}

void paintName(QPainter& painter, const QRectF& area, const QString& name) {
    QTextLayout layout(name, painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid()) {
        line.setLineWidth(area.width());
    }
    layout.endLayout();
    const int cut = line.isValid() ? line.textLength() : 0;
    const QFontMetricsF metrics(painter.font());
    QRectF place(area.left(), area.top(), area.width(), metrics.lineSpacing());
    constexpr int kOneLine = Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.drawText(place, kOneLine, name.left(cut).trimmed());
    place.translate(0, metrics.lineSpacing());
    painter.drawText(place, kOneLine,
                     metrics.elidedText(name.mid(cut).trimmed(), Qt::ElideMiddle, area.width()));
}

void paintUndecodable(QPainter& painter, const QRectF& area, const QPalette& palette) {
    const double side = std::min({area.width(), area.height(), 64.0}) * 0.6;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(area.center().x() - side / 2, area.center().y() - side / 2);
    painter.scale(side / 16, side / 16);
    const QColor ink =
        app::between(palette.color(QPalette::Text), palette.color(QPalette::Base), 0.5);
    painter.setPen(QPen(ink, 1, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);

    QPainterPath left;
    left.moveTo(7, 2.5);
    left.lineTo(1.5, 2.5);
    left.lineTo(1.5, 13.5);
    left.lineTo(6, 13.5);
    QPainterPath right;
    right.moveTo(9, 2.5);
    right.lineTo(14.5, 2.5);
    right.lineTo(14.5, 13.5);
    right.lineTo(8, 13.5);
    QPainterPath tear;
    tear.moveTo(7, 2.5);
    tear.lineTo(8.5, 5.5);
    tear.lineTo(6.2, 8.5);
    tear.lineTo(7.7, 11);
    tear.lineTo(6, 13.5);
    painter.drawPath(left);
    painter.drawPath(tear);
    painter.translate(2, 0);
    painter.drawPath(tear);
    painter.translate(-2, 0);
    painter.drawPath(right);
    painter.restore();
}

} // namespace browser
