#include "imaging/metafile/plus_painting.h"

#include "imaging/byte_reader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace imaging::metafile {

namespace {

QGradient::Spread spreadOf(PlusWrap wrap) {
    switch (wrap) {
    case PlusWrap::Tile:
    case PlusWrap::FlipDown:
        return QGradient::RepeatSpread;
    case PlusWrap::FlipAcross:
    case PlusWrap::FlipBoth:
        return QGradient::ReflectSpread;
    case PlusWrap::Clamp:
        break;
    }
    return QGradient::PadSpread;
}

void setStops(QGradient& gradient, const std::vector<PlusStop>& stops) {
    for (const PlusStop& stop : stops)
        gradient.setColorAt(stop.at, QColor::fromRgba(stop.colour));
}

// Styles 0 to 5 are lines; those to 17 dots from thin to dense; the others are lines again.
Qt::BrushStyle hatchStyle(int hatch) {
    constexpr std::array kLines{Qt::HorPattern,   Qt::VerPattern,   Qt::FDiagPattern,
                                Qt::BDiagPattern, Qt::CrossPattern, Qt::DiagCrossPattern};
    constexpr std::array kDots{Qt::Dense7Pattern, Qt::Dense7Pattern, Qt::Dense6Pattern,
                               Qt::Dense6Pattern, Qt::Dense6Pattern, Qt::Dense5Pattern,
                               Qt::Dense5Pattern, Qt::Dense4Pattern, Qt::Dense3Pattern,
                               Qt::Dense3Pattern, Qt::Dense2Pattern, Qt::Dense1Pattern};
    // Light, dark and wide diagonals, narrow and dashed lines, then bricks, weaves and the like.
    constexpr std::array kMore{
        Qt::FDiagPattern, Qt::BDiagPattern, Qt::FDiagPattern, Qt::BDiagPattern,
        Qt::FDiagPattern, Qt::BDiagPattern, Qt::VerPattern,   Qt::HorPattern,
        Qt::VerPattern,   Qt::HorPattern,   Qt::VerPattern,   Qt::HorPattern,
        Qt::FDiagPattern, Qt::BDiagPattern, Qt::HorPattern,   Qt::VerPattern};
    constexpr std::size_t kFirstDots = kLines.size();
    constexpr std::size_t kFirstMore = kFirstDots + kDots.size();
    const auto index = static_cast<std::size_t>(hatch);
    if (index < kFirstDots)
        return kLines.at(index);
    if (index < kFirstMore)
        return kDots.at(index - kFirstDots);
    if (index < kFirstMore + kMore.size())
        return kMore.at(index - kFirstMore);
    return Qt::DiagCrossPattern;
}

QBrush hatchBrush(const PlusBrush& brush) {
    // One repeat of the pattern, so that its ground can have a colour.
    constexpr int kPeriod = 8;
    QImage tile(kPeriod, kPeriod, QImage::Format_ARGB32_Premultiplied);
    tile.fill(QColor::fromRgba(brush.ground));
    QPainter painter(&tile);
    painter.fillRect(tile.rect(), QBrush(QColor::fromRgba(brush.colour), hatchStyle(brush.hatch)));
    return QBrush(tile);
}

QBrush linearBrush(const PlusBrush& brush, const QTransform& toImage) {
    QLinearGradient gradient(QPointF(brush.rectangle.left(), 0),
                             QPointF(brush.rectangle.right(), 0));
    setStops(gradient, brush.stops);
    gradient.setSpread(spreadOf(brush.wrap));
    QBrush result(gradient);
    result.setTransform(brush.transform * toImage);
    return result;
}

QImage mirroredTile(const PlusBrush& brush) {
    const bool across = brush.wrap == PlusWrap::FlipAcross || brush.wrap == PlusWrap::FlipBoth;
    const bool down = brush.wrap == PlusWrap::FlipDown || brush.wrap == PlusWrap::FlipBoth;
    const QImage& texture = brush.texture;
    if (!across && !down)
        return texture;
    QImage tile = newImage({texture.width() * (across ? 2 : 1), texture.height() * (down ? 2 : 1)},
                           QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&tile);
    painter.drawImage(0, 0, texture);
    if (across)
        painter.drawImage(texture.width(), 0, texture.mirrored(true, false));
    if (down)
        painter.drawImage(0, texture.height(), texture.mirrored(false, true));
    if (across && down)
        painter.drawImage(texture.width(), texture.height(), texture.mirrored(true, true));
    return tile;
}

// From the edge of the boundary towards the centre, triangle by triangle.
QBrush pathBrush(const PlusBrush& brush, const QTransform& toImage, Canvas& canvas) {
    const QTransform transform = brush.transform * toImage;
    const QPolygonF edge = transform.map(brush.boundary).toFillPolygon();
    const QPointF centre = transform.map(brush.centre);
    QImage layer = newImage(canvas.sheet().size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&layer);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    canvas.budget().spendPoints(static_cast<std::size_t>(edge.size()) * 8);
    canvas.budget().spendPixels(4.0 * layer.width() * layer.height());
    for (qsizetype i = 0; i + 1 < edge.size(); ++i) {
        const QPointF side = edge[i + 1] - edge[i];
        const double length = std::hypot(side.x(), side.y());
        if (length == 0)
            continue;
        const QPointF toCentre = centre - edge[i];
        const double along = QPointF::dotProduct(toCentre, side) / (length * length);
        QLinearGradient gradient(edge[i] + side * along, centre);
        setStops(gradient, brush.stops);
        const std::size_t colour =
            std::min(static_cast<std::size_t>(i), brush.surroundings.size() - 1);
        if (brush.surroundings.size() > 1)
            gradient.setColorAt(0, QColor::fromRgba(brush.surroundings[colour]));
        painter.setBrush(gradient);
        painter.drawPolygon(QPolygonF{edge[i], edge[i + 1], centre});
    }
    painter.end();
    return QBrush(layer);
}

} // namespace

QBrush plusBrush(const PlusBrush& brush, const QTransform& toImage, QPoint origin, Canvas& canvas) {
    switch (brush.kind) {
    case PlusBrushKind::Hatch: {
        QBrush result = hatchBrush(brush);
        result.setTransform(QTransform::fromTranslate(origin.x(), origin.y()));
        return result;
    }
    case PlusBrushKind::Texture: {
        canvas.budget().spendPixels(4.0 * brush.texture.width() * brush.texture.height());
        QBrush result(mirroredTile(brush));
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

} // namespace imaging::metafile
