#include "imaging/operations/rotation.h"

#include "imaging/operations/angles.h"
#include "imaging/operations/editable_image.h"
#include "imaging/operations/free_rotation.h"
#include "imaging/operations/quarter_turns.h"
#include "imaging/picture_facts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numbers>
#include <stdexcept>
#include <string>

namespace imaging::operations {

namespace {

double radiansOf(int angle) {
    return angle / 100.0 * std::numbers::pi / 180;
}

bool isOpaque(const PixelRows<const QRgb>& rows) {
    for (int y = 0; y < rows.height; ++y) {
        QRgb common = 0xFF000000;
        for (int x = 0; x < rows.width; ++x) {
            common &= rows.row(y)[x];
        }
        if (common != 0xFF000000) {
            return false;
        }
    }
    return true;
}

// Rows so far apart that their pixels cannot be counted in 31 bits come closer in a copy.
QImage compact(const QImage& image) {
    const auto reaches = [](const QImage& any) {
        return any.bytesPerLine() / qsizetype{sizeof(QRgb)} * any.height() >
               std::numeric_limits<int>::max();
    };
    if (!reaches(image)) {
        return image;
    }
    const QImage copy = image.copy();
    if (copy.isNull()) {
        throw std::bad_alloc();
    }
    if (reaches(copy)) {
        throw std::length_error("the picture has too many pixels to turn it by this angle");
    }
    return copy;
}

void refuseTooLarge(QSize size) {
    const qint64 pixels = qint64{size.width()} * size.height();
    if (pixels > kMaximumPixels) {
        throw std::length_error("the turned picture would have " + std::to_string(pixels) +
                                " pixels; " + std::to_string(kMaximumPixels) + " are the most");
    }
}

// `part` is not empty, the angle no whole turn.
QImage turnedPart(const QImage& image, const Rotation& rotation, const QRect& part) {
    const QImage source = compact(image);
    const QRgb fill = source.hasAlphaChannel() ? rotation.fill : rotation.fill | 0xFF000000;
    const QSize whole = rotatedSize(source.size(), rotation);
    const int angle = withinOneTurn(rotation.angle);
    const PixelRows<const QRgb> from = constRowsOf(source);
    QImage result = emptyLike(source, part.size());
    if (angle % kQuarterTurn == 0) {
        const bool upright = angle % (2 * kQuarterTurn) == 0;
        const QSize turned = upright ? source.size() : source.size().transposed();
        const QPoint middle((whole.width() - turned.width()) / 2,
                            (whole.height() - turned.height()) / 2);
        copyTurned(from, angle / kQuarterTurn, rowsOf(result), middle - part.topLeft(), fill);
    } else {
        const bool opaque = !source.hasAlphaChannel() || (qAlpha(fill) == 255 && isOpaque(from));
        copyTurnedFreely(from, {angle / 100.0, whole, fill, opaque}, rowsOf(result),
                         part.topLeft());
    }
    return result;
}

} // namespace

QSize rotatedSize(QSize size, const Rotation& rotation) {
    const int angle = withinOneTurn(rotation.angle);
    if (rotation.canvas == Canvas::Keep || angle % (2 * kQuarterTurn) == 0) {
        return size;
    }
    if (angle % kQuarterTurn == 0) {
        return size.transposed();
    }
    const double cosine = std::abs(std::cos(radiansOf(angle)));
    const double sine = std::abs(std::sin(radiansOf(angle)));
    return {static_cast<int>(std::ceil(size.width() * cosine + size.height() * sine)),
            static_cast<int>(std::ceil(size.width() * sine + size.height() * cosine))};
}

QImage rotated(const QImage& image, const Rotation& rotation) {
    if (image.isNull() || withinOneTurn(rotation.angle) == 0) {
        return image;
    }
    const QSize size = rotatedSize(image.size(), rotation);
    refuseTooLarge(size);
    return turnedPart(editable(image), rotation, QRect(QPoint(0, 0), size));
}

QImage rotatedPart(const QImage& image, const Rotation& rotation, const QRect& part) {
    if (image.isNull() || part.isEmpty()) {
        return {};
    }
    return turnedPart(editable(image), rotation, part);
}

void rotate(QImage& image, const Rotation& rotation) {
    if (!image.isNull() && withinOneTurn(rotation.angle) == 2 * kQuarterTurn) {
        makeEditable(image);
        turnHalfInPlace(rowsOf(image));
    } else {
        image = rotated(image, rotation);
    }
}

QPoint rotatedPoint(QPoint pixel, QSize size, const Rotation& rotation) {
    const QSize whole = rotatedSize(size, rotation);
    const double radians = radiansOf(withinOneTurn(rotation.angle));
    const double x = pixel.x() + 0.5 - size.width() / 2.0;
    const double y = pixel.y() + 0.5 - size.height() / 2.0;
    const double turnedX = std::cos(radians) * x - std::sin(radians) * y + whole.width() / 2.0;
    const double turnedY = std::sin(radians) * x + std::cos(radians) * y + whole.height() / 2.0;
    // What lies on the line between two pixels is rounded alike, however the sines are.
    constexpr double kTiny = 1e-9;
    return {std::clamp(static_cast<int>(std::floor(turnedX + kTiny)), 0, whole.width() - 1),
            std::clamp(static_cast<int>(std::floor(turnedY + kTiny)), 0, whole.height() - 1)};
}

} // namespace imaging::operations
