#include "metafile/plus_drawing/plus_painting.h"

#include "imaging/byte_reader.h"
#include "imaging/new_image.h"
#include "metafile/plus_drawing/plus_hatches.h"
#include "metafile/plus_drawing/plus_path_gradient.h"
#include "metafile/records/bitmap_reader.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

bool flipsAcross(PlusWrap wrap) {
    return wrap == PlusWrap::FlipAcross || wrap == PlusWrap::FlipBoth;
}

bool flipsDown(PlusWrap wrap) {
    return wrap == PlusWrap::FlipDown || wrap == PlusWrap::FlipBoth;
}

QGradient::Spread spreadOf(PlusWrap wrap, bool runsDown) {
    if (wrap == PlusWrap::Clamp) {
        return QGradient::PadSpread;
    }
    return (runsDown ? flipsDown(wrap) : flipsAcross(wrap)) ? QGradient::ReflectSpread
                                                            : QGradient::RepeatSpread;
}

// A gradient keeps one colour a place: a second one there, a sharp edge, is moved behind it.
void setStops(QGradient& gradient, const std::vector<PlusStop>& stops) {
    constexpr double kNext = 1e-6;
    QGradientStops result;
    for (const PlusStop& stop : stops) {
        double at = stop.at;
        if (!result.isEmpty() && at <= result.last().first) {
            at = result.last().first + kNext;
        }
        result.append({std::min(at, 1.0), QColor::fromRgba(stop.colour)});
    }
    gradient.setStops(result);
}

QBrush linearBrush(const PlusBrush& brush, const QTransform& toImage) {
    const QPointF begin = brush.rectangle.topLeft();
    QLinearGradient gradient(begin, brush.runsDown ? brush.rectangle.bottomLeft()
                                                   : brush.rectangle.topRight());
    setStops(gradient, brush.stops);
    gradient.setSpread(spreadOf(brush.wrap, brush.runsDown));
    QBrush result(gradient);
    result.setTransform(brush.transform * toImage);
    return result;
}

// One repeat of a texture that every other time is mirrored.
QImage mirroredTile(const QImage& texture, PlusWrap wrap) {
    const bool across = flipsAcross(wrap);
    const bool down = flipsDown(wrap);
    const std::int64_t pixels = std::int64_t{4} * texture.width() * texture.height();
    if ((!across && !down) || pixels > kMaximumBitmapPixels) {
        return texture;
    }
    QImage tile =
        imaging::newImage({texture.width() * (across ? 2 : 1), texture.height() * (down ? 2 : 1)},
                          QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&tile);
    painter.drawImage(0, 0, texture);
    if (across) {
        painter.drawImage(texture.width(), 0, texture.mirrored(true, false));
    }
    if (down) {
        painter.drawImage(0, texture.height(), texture.mirrored(false, true));
    }
    if (across && down) {
        painter.drawImage(texture.width(), texture.height(), texture.mirrored(true, true));
    }
    return tile;
}

// The figure once, or its box repeated all over the sheet if the brush does that.
QBrush pathBrush(const PlusBrush& brush, const QTransform& toImage, Canvas& canvas) {
    constexpr double kLargestTile = 2000; // image pixels a side
    const QTransform transform = brush.transform * toImage;
    const QRectF box = transform.mapRect(brush.boundary.boundingRect());
    const bool isTiled = brush.wrap != PlusWrap::Clamp && box.width() >= 1 && box.height() >= 1 &&
                         box.width() < kLargestTile && box.height() < kLargestTile &&
                         !box.contains(canvas.sheet());
    const QSize size = isTiled ? QSize(static_cast<int>(std::ceil(box.width())),
                                       static_cast<int>(std::ceil(box.height())))
                               : canvas.sheet().size();
    const QTransform fromLayer =
        isTiled ? QTransform::fromScale(box.width() / size.width(), box.height() / size.height()) *
                      QTransform::fromTranslate(box.x(), box.y())
                : QTransform();
    canvas.budget().spendPixels(4.0 * size.width() * size.height());
    QImage layer = imaging::newImage(size, QImage::Format_ARGB32_Premultiplied);
    paintPathGradient(layer, brush, transform * fromLayer.inverted(), canvas.budget());
    QBrush result(isTiled ? mirroredTile(layer, brush.wrap) : layer);
    result.setTransform(fromLayer);
    return result;
}

} // namespace

QBrush plusBrush(const PlusBrush& brush, const QTransform& toImage, QPoint origin, Canvas& canvas) {
    switch (brush.kind) {
    case PlusBrushKind::Hatch: {
        QBrush result(plusHatchTile(brush.hatch, brush.colour, brush.ground));
        result.setTransform(QTransform::fromTranslate(origin.x(), origin.y()));
        return result;
    }
    case PlusBrushKind::Texture: {
        canvas.budget().spendPixels(4.0 * brush.texture.width() * brush.texture.height());
        QBrush result(mirroredTile(brush.texture, brush.wrap));
        result.setTransform(brush.transform * toImage);
        return result;
    }
    case PlusBrushKind::LinearGradient:
        return linearBrush(brush, toImage);
    case PlusBrushKind::PathGradient:
        return pathBrush(brush, toImage, canvas);
    case PlusBrushKind::Solid:
        break;
    }
    return QColor::fromRgba(brush.colour);
}

} // namespace metafile
