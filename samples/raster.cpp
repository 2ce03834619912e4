#include "raster.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QRadialGradient>

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace samples {

namespace {

void paintShape(QPainter& painter, const Shape& shape) {
    painter.setPen(shape.lineWidth > 0 ? QPen(shape.line, shape.lineWidth, Qt::SolidLine,
                                              Qt::RoundCap, Qt::RoundJoin)
                                       : QPen(Qt::NoPen));
    painter.setBrush(shape.fill.isValid() ? QBrush(shape.fill) : QBrush(Qt::NoBrush));
    const auto count = static_cast<int>(shape.points.size());
    switch (shape.outline) {
    case Outline::Polygon:
        painter.drawPolygon(shape.points.data(), count);
        break;
    case Outline::Polyline:
        painter.drawPolyline(shape.points.data(), count);
        break;
    case Outline::Ellipse:
        painter.drawEllipse(QRectF(shape.points.at(0), shape.points.at(1)));
        break;
    }
}

QImage canvas(QSize pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

int squared(int value) {
    return value * value;
}

int distance(QRgb one, QRgb other) {
    return squared(qRed(one) - qRed(other)) + squared(qGreen(one) - qGreen(other)) +
           squared(qBlue(one) - qBlue(other));
}

std::size_t nearest(const std::vector<QRgb>& palette, QRgb colour) {
    const auto closer = [colour](QRgb one, QRgb other) {
        return distance(one, colour) < distance(other, colour);
    };
    return static_cast<std::size_t>(std::min_element(palette.begin(), palette.end(), closer) -
                                    palette.begin());
}

// The most frequent colours that differ visibly from each other.
std::vector<QRgb> commonColours(const std::map<QRgb, int>& counts, std::size_t limit) {
    std::vector<std::pair<QRgb, int>> byCount(counts.begin(), counts.end());
    std::stable_sort(byCount.begin(), byCount.end(),
                     [](const auto& one, const auto& other) { return one.second > other.second; });
    std::vector<QRgb> palette;
    const int apart = counts.size() <= limit ? 0 : limit <= 16 ? 1200 : 90;
    for (const auto& [colour, count] : byCount) {
        if (palette.size() == limit) {
            break;
        }
        if (palette.empty() || distance(palette[nearest(palette, colour)], colour) > apart) {
            palette.push_back(colour);
        }
    }
    if (palette.empty()) {
        palette.push_back(qRgb(255, 255, 255));
    }
    return palette;
}

} // namespace

QImage rendered(const Drawing& drawing, QSize pixels) {
    QImage image = canvas(pixels);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Drawing placed = fitted(drawing, QRectF(QPointF(), pixels), pixels);
    for (const Shape& shape : placed.shapes) {
        paintShape(painter, shape);
    }
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage onGround(const QImage& picture, const QColor& ground) {
    QImage image(picture.size(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    painter.drawImage(0, 0, picture);
    return image;
}

IndexedPicture reduced(const QImage& picture, int colours, Transparency transparency) {
    const QImage flat = onGround(picture, Qt::white);
    const QImage source = picture.convertToFormat(QImage::Format_ARGB32);
    const auto clear = [&](int x, int y) {
        return transparency == Transparency::OneIndex && qAlpha(source.pixel(x, y)) < 128;
    };
    std::map<QRgb, int> counts;
    for (int y = 0; y < flat.height(); ++y) {
        for (int x = 0; x < flat.width(); ++x) {
            if (!clear(x, y)) {
                ++counts[flat.pixel(x, y) | 0xFF000000U];
            }
        }
    }
    IndexedPicture result;
    result.size = flat.size();
    const bool reserves = transparency == Transparency::OneIndex;
    result.palette = commonColours(counts, static_cast<std::size_t>(colours - (reserves ? 1 : 0)));
    const std::vector<QRgb> opaque = result.palette;
    if (reserves) {
        result.transparent = static_cast<int>(result.palette.size());
        result.palette.push_back(qRgb(255, 255, 255));
    }
    std::map<QRgb, unsigned char> known;
    for (const auto& [colour, count] : counts) {
        known[colour] = static_cast<unsigned char>(nearest(opaque, colour));
    }
    for (int y = 0; y < flat.height(); ++y) {
        for (int x = 0; x < flat.width(); ++x) {
            result.pixels.push_back(clear(x, y) ? static_cast<unsigned char>(result.transparent)
                                                : known.at(flat.pixel(x, y) | 0xFF000000U));
        }
    }
    return result;
}

QImage studioShot(const Drawing& drawing, QSize pixels) {
    QImage image(pixels, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole(QRect(QPoint(), pixels));
    QLinearGradient wall(whole.topLeft(), whole.bottomLeft());
    wall.setColorAt(0, QColor(0xF7, 0xF9, 0xFB));
    wall.setColorAt(0.72, QColor(0xDF, 0xE5, 0xEA));
    wall.setColorAt(0.74, QColor(0xCD, 0xD5, 0xDC));
    wall.setColorAt(1, QColor(0xF0, 0xF3, 0xF5));
    painter.fillRect(whole, wall);
    const QRectF box(whole.width() * 0.17, whole.height() * 0.12, whole.width() * 0.66,
                     whole.height() * 0.74);
    const Drawing placed = fitted(drawing, box, QSizeF(pixels));
    const double scale =
        std::min(box.width() / drawing.size.width(), box.height() / drawing.size.height());
    painter.save();
    painter.translate(box.center().x(), box.center().y() + drawing.size.height() * scale * 0.475);
    painter.scale(drawing.size.width() * scale * 0.6, whole.height() * 0.06);
    QRadialGradient shadow(QPointF(0, 0), 1);
    shadow.setColorAt(0, QColor(20, 28, 36, 130));
    shadow.setColorAt(1, QColor(20, 28, 36, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    painter.drawEllipse(QRectF(-1, -1, 2, 2));
    painter.restore();
    for (const Shape& shape : placed.shapes) {
        paintShape(painter, shape);
    }
    return image;
}

} // namespace samples
