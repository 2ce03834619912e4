#include "metafile/drawing/blit_painter.h"

#include "imaging/byte_reader.h"
#include "imaging/image_scaling.h"
#include "imaging/new_image.h"
#include "metafile/drawing/pen_and_brush.h"
#include "metafile/drawing/raster_operations.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

constexpr std::uint8_t kBlack = 0x00;
constexpr std::uint8_t kKeep = 0xAA;
constexpr std::uint8_t kCopySource = 0xCC;
constexpr std::uint8_t kCopyPattern = 0xF0;
constexpr std::uint8_t kWhite = 0xFF;

// A side that is longer than this reaches over any sheet.
QPointF bounded(QPointF side) {
    constexpr double kMost = 1e6;
    return {std::clamp(side.x(), -kMost, kMost), std::clamp(side.y(), -kMost, kMost)};
}

QPointF mapVector(const QTransform& transform, QPointF vector) {
    return transform.map(vector) - transform.map(QPointF());
}

} // namespace

// Where a picture goes, in image pixels: the three corners that its top left, top right and bottom
// left one go to.
struct BlitPainter::Place {
    QPointF origin, across, down; // the last two are sides
    bool alongAxes = false;

    QRectF box() const {
        const QPointF far = origin + across + down;
        return QRectF(origin, far).normalized() |
               QRectF(origin + across, origin + down).normalized();
    }
    QRect pixels() const {
        const QRectF all = box();
        const QPoint corner(static_cast<int>(std::lround(all.left())),
                            static_cast<int>(std::lround(all.top())));
        const QPoint end(static_cast<int>(std::lround(all.right())),
                         static_cast<int>(std::lround(all.bottom())));
        return {corner,
                QSize(std::max(1, end.x() - corner.x()), std::max(1, end.y() - corner.y()))};
    }
    // The source's coordinates to image pixels; along the axes to whole ones, so that pictures that
    // were cut into strips meet.
    QTransform from(const QRectF& part) const {
        QPointF begin = origin;
        QPointF sideAcross = across;
        QPointF sideDown = down;
        if (alongAxes) {
            const QRect snapped = pixels();
            begin = {across.x() < 0 ? snapped.x() + snapped.width() : double(snapped.x()),
                     down.y() < 0 ? snapped.y() + snapped.height() : double(snapped.y())};
            sideAcross = {std::copysign(snapped.width(), across.x()), 0};
            sideDown = {0, std::copysign(snapped.height(), down.y())};
        }
        const QTransform sides(sideAcross.x() / part.width(), sideAcross.y() / part.width(),
                               sideDown.x() / part.height(), sideDown.y() / part.height(),
                               begin.x(), begin.y());
        return QTransform::fromTranslate(-part.x(), -part.y()) * sides;
    }
    QPainterPath outline() const {
        QPainterPath path;
        path.addPolygon(QPolygonF{origin, origin + across, origin + across + down, origin + down});
        path.closeSubpath();
        return path;
    }
};

BlitPainter::Place BlitPainter::placeOf(const Destination& destination,
                                        const DeviceContext& context) const {
    constexpr double kSame = 0.01;
    Place place;
    place.origin = context.map(destination.topLeft);
    if (destination.placement == Placement::DevicePixels) {
        const QTransform& toImage = canvas_.deviceToImage();
        place.across = bounded(mapVector(toImage, destination.topRight - destination.topLeft));
        place.down = bounded(mapVector(toImage, destination.bottomLeft - destination.topLeft));
    } else {
        place.across = context.map(destination.topRight) - place.origin;
        place.down = context.map(destination.bottomLeft) - place.origin;
    }
    place.alongAxes = std::abs(place.across.y()) < kSame && std::abs(place.down.x()) < kSame;
    return place;
}

void BlitPainter::begin(const DeviceContext& context) {
    QPainter& painter = canvas_.painter();
    painter.resetTransform();
    canvas_.clipTo(context.clip, context.frozenClip);
    painter.setOpacity(1);
    canvas_.setMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void BlitPainter::spendPicture(const QImage& image, const Place& place) {
    const QRect seen = place.pixels() & canvas_.sheet();
    canvas_.budget().spendPixels(double{1} * image.width() * image.height());
    canvas_.budget().spendPixels(4.0 * seen.width() * seen.height());
}

// The part of the image as it lies within `box` of the sheet.
QImage BlitPainter::layer(const QImage& image, const QRectF& part, const Place& place,
                          const QRect& box, const DeviceContext& context) {
    QImage result = imaging::newImage(box.size(), QImage::Format_ARGB32_Premultiplied);
    const QRect seen = (part.normalized() & QRectF(image.rect())).toAlignedRect() & image.rect();
    constexpr double kLeast = 0.01; // of a pixel of the source
    if (std::abs(part.width()) < kLeast || std::abs(part.height()) < kLeast || seen.isEmpty()) {
        return result;
    }
    QPainter painter(&result);
    const QTransform toSheet =
        place.from(part) * QTransform::fromTranslate(-box.left(), -box.top());
    const double factor = std::sqrt(std::abs(toSheet.determinant()));
    if (place.alongAxes && factor < (imaging::isVeryLarge(image.size()) ? 0.5 : 1)) {
        const QRect target = toSheet.mapRect(QRectF(seen)).toRect();
        const QSize size = target.size().expandedTo({1, 1});
        const bool whole = seen == image.rect();
        QImage scaled = imaging::smoothlyScaled(whole ? image : image.copy(seen), size);
        if (toSheet.m11() < 0 || toSheet.m22() < 0) {
            scaled = scaled.mirrored(toSheet.m11() < 0, toSheet.m22() < 0);
        }
        painter.drawImage(target.topLeft(), scaled);
        return result;
    }
    // Little pictures much enlarged show their pixels, unless the file wants it otherwise.
    constexpr double kMuch = 3;
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          context.smoothStretching || factor < kMuch);
    painter.setRenderHint(QPainter::Antialiasing, !place.alongAxes);
    painter.setTransform(toSheet);
    painter.drawImage(seen.topLeft(), image, seen);
    return result;
}

QImage BlitPainter::patternLayer(const QRect& box, const DeviceContext& context) {
    QImage result = imaging::newImage(box.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(context.backgroundColour);
    QPainter painter(&result);
    painter.setBrushOrigin(context.brushOrigin - box.topLeft());
    painter.fillRect(result.rect(), painterBrush(context.brush, context));
    return result;
}

void BlitPainter::combine(const RasterBlit& blit, const Place& place,
                          const DeviceContext& context) {
    const QRect box = place.pixels() & canvas_.sheet();
    const auto layerOf = [&](const Bitmap& bitmap, const QRectF& part) {
        return layer(bitmap.monochrome ? inContextColours(bitmap.image, context) : bitmap.image,
                     part, place, box, context);
    };
    QImage source;
    if (blit.source && (usesSource(blit.operation) || usesSource(blit.behindMask))) {
        source = layerOf(*blit.source, blit.part);
    }
    QImage pattern;
    if (usesPattern(blit.operation) || usesPattern(blit.behindMask)) {
        canvas_.budget().spendPixels(patternCost(context.brush));
        pattern = patternLayer(box, context);
    }
    QImage mask;
    if (blit.mask) {
        mask = layerOf(*blit.mask, blit.part.translated(blit.maskOffset));
    }
    const bool needsPixels =
        usesDestination(blit.operation) || (blit.mask && usesDestination(blit.behindMask));
    const QImage destination = needsPixels ? canvas_.pixels().copy(box)
                                           : imaging::newImage(box.size(), QImage::Format_RGB32);
    const QImage result =
        combined({destination, source, pattern, mask}, blit.operation, blit.behindMask);
    begin(context);
    if (!place.alongAxes) {
        canvas_.painter().setClipPath(place.outline(), Qt::IntersectClip);
    }
    canvas_.painter().drawImage(box.topLeft(), result);
}

void BlitPainter::draw(const RasterBlit& blit, const DeviceContext& context) {
    const Place place = placeOf(blit.destination, context);
    const QRect box = place.pixels() & canvas_.sheet();
    if (box.isEmpty() || (blit.operation == kKeep && !blit.mask)) {
        return;
    }
    const Bitmap* source = blit.source ? &*blit.source : nullptr;
    spendPicture(source != nullptr ? source->image : QImage(), place);
    if (usesSource(blit.operation) && source == nullptr) {
        return;
    }
    const bool plain = !blit.mask && place.alongAxes;
    if (plain && source != nullptr && blit.operation == kCopySource && !source->monochrome) {
        const QImage picture = layer(source->image, blit.part, place, box, context);
        begin(context);
        canvas_.painter().drawImage(box.topLeft(), picture);
        return;
    }
    if (plain && (blit.operation == kBlack || blit.operation == kWhite)) {
        begin(context);
        canvas_.painter().fillRect(box, blit.operation == kBlack ? Qt::black : Qt::white);
        return;
    }
    if (plain && blit.operation == kCopyPattern && context.brush.kind == BrushKind::Null) {
        return;
    }
    combine(blit, place, context);
}

void BlitPainter::draw(const AlphaBlit& blit, const DeviceContext& context) {
    const Place place = placeOf(blit.destination, context);
    const QRect box = place.pixels() & canvas_.sheet();
    if (box.isEmpty()) {
        return;
    }
    spendPicture(blit.source, place);
    const QImage picture = layer(blit.source, blit.part, place, box, context);
    begin(context);
    canvas_.painter().setOpacity(blit.opacity);
    canvas_.painter().drawImage(box.topLeft(), picture);
}

void BlitPainter::drawBand(const GradientVertex& from, const GradientVertex& to, GradientKind kind,
                           const DeviceContext& context) {
    const QRectF rectangle(from.point, to.point);
    QPainterPath path;
    path.addRect(rectangle);
    const QPointF begin = context.map(from.point);
    const QPointF end = context.map(kind == GradientKind::Horizontal ? rectangle.topRight()
                                                                     : rectangle.bottomLeft());
    QLinearGradient gradient(begin, end);
    gradient.setColorAt(0, QColor::fromRgb(from.colour));
    gradient.setColorAt(1, QColor::fromRgb(to.colour));
    const QRect box = context.map(path).controlPointRect().toRect() & canvas_.sheet();
    canvas_.budget().spendPixels(2.0 * box.width() * box.height());
    if (context.toImage.type() <= QTransform::TxScale) {
        canvas_.painter().fillRect(box, gradient);
    } else {
        canvas_.painter().fillPath(context.map(path), gradient);
    }
}

void BlitPainter::drawTriangle(const std::array<GradientVertex, 3>& corners,
                               const DeviceContext& context) {
    const std::array points{context.map(corners[0].point), context.map(corners[1].point),
                            context.map(corners[2].point)};
    const QRect box = QPolygonF({points[0], points[1], points[2]}).boundingRect().toAlignedRect() &
                      canvas_.sheet();
    const QPointF a = points[1] - points[0];
    const QPointF b = points[2] - points[0];
    const double area = a.x() * b.y() - b.x() * a.y();
    if (box.isEmpty() || area == 0) {
        return;
    }
    canvas_.budget().spendPixels(40.0 * box.width() * box.height());
    QImage result = imaging::newImage(box.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < box.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < box.width(); ++x) {
            const QPointF p = QPointF(box.left() + x + 0.5, box.top() + y + 0.5) - points[0];
            const double second = (p.x() * b.y() - b.x() * p.y()) / area;
            const double third = (a.x() * p.y() - p.x() * a.y()) / area;
            const double first = 1 - second - third;
            if (first < 0 || second < 0 || third < 0) {
                continue;
            }
            const auto mixed = [&](int (*channel)(QRgb)) {
                return static_cast<int>(std::lround(first * channel(corners[0].colour) +
                                                    second * channel(corners[1].colour) +
                                                    third * channel(corners[2].colour)));
            };
            row[x] = qRgb(mixed(qRed), mixed(qGreen), mixed(qBlue));
        }
    }
    canvas_.painter().drawImage(box.topLeft(), result);
}

void BlitPainter::draw(const GradientFill& fill, const DeviceContext& context) {
    begin(context);
    for (const auto& mesh : fill.meshes) {
        canvas_.budget().spendRecord();
        if (fill.kind == GradientKind::Triangle) {
            drawTriangle({fill.vertices[mesh[0]], fill.vertices[mesh[1]], fill.vertices[mesh[2]]},
                         context);
        } else {
            drawBand(fill.vertices[mesh[0]], fill.vertices[mesh[1]], fill.kind, context);
        }
    }
}

namespace {

// Opaque where the flood comes to. Goes from row to row by runs of pixels: a list of single ones
// would become several times as large as the sheet.
QImage flooded(const QImage& sheet, QPoint start, const FloodFill& fill) {
    constexpr QRgb kColour = 0x00FFFFFF;
    QImage reached = imaging::newImage(sheet.size(), QImage::Format_ARGB32_Premultiplied);
    const auto* surface = reinterpret_cast<const QRgb*>(sheet.constBits());
    auto* flood = reinterpret_cast<QRgb*>(reached.bits());
    const auto pixelAt = [&](int x, int y) { // both have rows without gaps
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(sheet.width()) +
               static_cast<std::size_t>(x);
    };
    const bool wanted = fill.mode == FloodMode::WhileSurface;
    const auto isOpen = [&](int x, int y) {
        const std::size_t at = pixelAt(x, y);
        return (((surface[at] ^ fill.colour) & kColour) == 0) == wanted && flood[at] == 0;
    };
    std::vector<QPoint> begins;
    if (isOpen(start.x(), start.y())) {
        begins.push_back(start);
    }
    while (!begins.empty()) {
        const QPoint at = begins.back();
        begins.pop_back();
        const int y = at.y();
        if (!isOpen(at.x(), y)) {
            continue;
        }
        int left = at.x();
        while (left > 0 && isOpen(left - 1, y)) {
            --left;
        }
        int right = at.x() + 1;
        while (right < sheet.width() && isOpen(right, y)) {
            ++right;
        }
        std::fill(flood + pixelAt(left, y), flood + pixelAt(right, y), qRgb(0, 0, 0));
        for (const int next : {y - 1, y + 1}) {
            if (next < 0 || next >= sheet.height()) {
                continue;
            }
            for (int x = left; x < right; ++x) {
                if (isOpen(x, next) && (x == left || !isOpen(x - 1, next))) {
                    begins.emplace_back(x, next);
                }
            }
        }
    }
    return reached;
}

} // namespace

void BlitPainter::draw(const FloodFill& fill, const DeviceContext& context) {
    const QPoint start = context.map(fill.point).toPoint();
    if (!canvas_.sheet().contains(start)) {
        return;
    }
    const QImage& sheet = canvas_.pixels();
    canvas_.budget().spendPixels(30.0 * sheet.width() * sheet.height());
    canvas_.budget().spendPixels(patternCost(context.brush));
    QImage reached = flooded(sheet, start, fill);
    QPainter painter(&reached);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.setBrushOrigin(context.brushOrigin);
    painter.fillRect(reached.rect(), painterBrush(context.brush, context));
    painter.end();
    begin(context);
    canvas_.painter().drawImage(0, 0, reached);
}

} // namespace metafile
