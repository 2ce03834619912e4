#include "metafile/plus_drawing/plus_image_painter.h"

#include "imaging/image_scaling.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

constexpr double kFarthest = 60000; // image pixels; far outside of any sheet

// The part of a metafile as parts of 1. Writers round its sides up, or count one pixel more.
QRectF shareOf(const QRectF& part, const QRectF& frame) {
    constexpr double kTolerance = 0.02;
    constexpr double kSmallest = 0.01;
    constexpr QRectF kWhole(0, 0, 1, 1);
    if (frame.isEmpty() || part.isEmpty()) {
        return kWhole;
    }
    const QRectF share((part.x() - frame.x()) / frame.width(),
                       (part.y() - frame.y()) / frame.height(), part.width() / frame.width(),
                       part.height() / frame.height());
    const auto isNear = [&](double one, double other, double side) {
        return std::abs(one - other) <= kTolerance + 1.5 / side;
    };
    const bool isWhole =
        isNear(share.left(), 0, frame.width()) && isNear(share.top(), 0, frame.height()) &&
        isNear(share.right(), 1, frame.width()) && isNear(share.bottom(), 1, frame.height());
    const bool isPart = share.left() > -kTolerance && share.top() > -kTolerance &&
                        share.right() < 1 + kTolerance && share.bottom() < 1 + kTolerance &&
                        share.width() > kSmallest && share.height() > kSmallest;
    return isPart && !isWhole ? share : kWhole;
}

void drawBitmap(Canvas& canvas, const QImage& image, const QRectF& part,
                const PlusImagePlace& place) {
    const QSizeF size = place.size();
    if (image.isNull() || part.width() <= 0 || part.height() <= 0) {
        return;
    }
    canvas.budget().spendPixels(double{1} * image.width() * image.height());
    canvas.budget().spendPixels(
        4 * std::min(size.width() * size.height(),
                     double{1} * canvas.sheet().width() * canvas.sheet().height()));
    const QRect seen = (part & QRectF(image.rect())).toAlignedRect() & image.rect();
    if (seen.isEmpty()) {
        return;
    }
    // How many pixels the seen part's side gets; a wild share is none that fits anyway.
    const auto share = [](double whole, double seenSide, double partSide) {
        return static_cast<int>(
            std::lround(std::clamp(whole * seenSide / partSide, 1.0, kFarthest)));
    };
    const QSize wanted(share(size.width(), seen.width(), part.width()),
                       share(size.height(), seen.height(), part.height()));
    QImage source = seen == image.rect() ? image : image.copy(seen);
    // Scaled with averaging first: painting alone would leave pixels out.
    const int least = imaging::isVeryLarge(seen.size()) ? 2 : 1;
    const bool shrinks =
        wanted.width() * least < seen.width() && wanted.height() * least < seen.height();
    if (shrinks) {
        source = imaging::smoothlyScaled(source, wanted);
    }
    const QTransform placed =
        QTransform::fromScale(double{1} * seen.width() / source.width(),
                              double{1} * seen.height() / source.height()) *
        QTransform::fromTranslate(seen.left() - part.left(), seen.top() - part.top()) *
        QTransform(place.across.x() / part.width(), place.across.y() / part.width(),
                   place.down.x() / part.height(), place.down.y() / part.height(), place.corner.x(),
                   place.corner.y());
    QPainter& painter = canvas.painter();
    const bool upright =
        placed.type() <= QTransform::TxScale && placed.m11() > 0 && placed.m22() > 0;
    if (upright) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        const QRectF box = placed.mapRect(QRectF(source.rect()));
        if (std::abs(box.left()) > kFarthest || std::abs(box.top()) > kFarthest ||
            box.width() > kFarthest || box.height() > kFarthest) {
            return;
        }
        const QPoint topLeft = box.topLeft().toPoint();
        const QPoint end = box.bottomRight().toPoint();
        painter.drawImage(QRect(topLeft, end - QPoint(1, 1)) | QRect(topLeft, QSize(1, 1)), source);
        return;
    }
    painter.setTransform(placed);
    painter.drawImage(0, 0, source);
    painter.resetTransform();
}

void drawMetafile(Canvas& canvas, const QByteArray& metafile, const QRectF& part,
                  const PlusImagePlace& place, const NestedMetafiles& nested) {
    constexpr double kMostSide = 4000;
    const auto bytes =
        std::as_bytes(std::span(metafile.constData(), static_cast<std::size_t>(metafile.size())));
    const QRectF share = shareOf(part, nested.frameOf(bytes));
    const QSizeF size = place.size();
    const QSize pixels(
        static_cast<int>(std::clamp(size.width() / share.width(), 1.0, kMostSide)),
        static_cast<int>(std::clamp(size.height() / share.height(), 1.0, kMostSide)));
    canvas.budget().spendPixels(double{1} * pixels.width() * pixels.height());
    const QImage drawn = nested.draw(bytes, pixels, canvas.budget());
    const QRectF wanted(share.x() * pixels.width(), share.y() * pixels.height(),
                        share.width() * pixels.width(), share.height() * pixels.height());
    drawBitmap(canvas, drawn, wanted, place);
}

} // namespace

QSizeF PlusImagePlace::size() const {
    return {std::hypot(across.x(), across.y()), std::hypot(down.x(), down.y())};
}

void drawPlusImage(Canvas& canvas, const PlusImage& image, const QRectF& part,
                   const PlusImagePlace& place, const NestedMetafiles& nested) {
    const QSizeF size = place.size();
    if (!(size.width() > 0) || !(size.height() > 0) || size.width() > kFarthest ||
        size.height() > kFarthest || std::abs(place.corner.x()) > kFarthest ||
        std::abs(place.corner.y()) > kFarthest) {
        return;
    }
    if (image.metafile.isEmpty()) {
        drawBitmap(canvas, image.image, part.normalized(), place);
    } else {
        drawMetafile(canvas, image.metafile, part.normalized(), place, nested);
    }
}

} // namespace metafile
