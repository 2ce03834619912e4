#include "imaging/operations/editable_image.h"

#include <QColorSpace>

#include <new>
#include <utility>

namespace imaging::operations {

QImage editable(const QImage& image) {
    if (image.isNull() || image.format() == QImage::Format_RGB32 ||
        image.format() == QImage::Format_ARGB32) {
        return image;
    }
    QImage converted = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                     : QImage::Format_RGB32);
    if (converted.isNull()) {
        throw std::bad_alloc();
    }
    return converted;
}

void makeEditable(QImage& image) {
    image = editable(image);
}

PixelRows<QRgb> rowsOf(QImage& image) {
    if (!image.isNull() && !image.isDetached()) {
        QImage own = image.copy(); // detaching would leave a null image where there is no memory
        if (own.isNull()) {
            throw std::bad_alloc();
        }
        image = std::move(own);
    }
    return {reinterpret_cast<QRgb*>(image.bits()),
            image.bytesPerLine() / std::ptrdiff_t{sizeof(QRgb)}, image.width(), image.height()};
}

PixelRows<const QRgb> constRowsOf(const QImage& image) {
    return {reinterpret_cast<const QRgb*>(image.constBits()),
            image.bytesPerLine() / std::ptrdiff_t{sizeof(QRgb)}, image.width(), image.height()};
}

QImage emptyLike(const QImage& image, QSize size) {
    QImage empty(size, image.format());
    if (empty.isNull() && !size.isEmpty()) {
        throw std::bad_alloc();
    }
    empty.setDevicePixelRatio(image.devicePixelRatio());
    empty.setDotsPerMeterX(image.dotsPerMeterX());
    empty.setDotsPerMeterY(image.dotsPerMeterY());
    empty.setOffset(image.offset());
    empty.setColorSpace(image.colorSpace());
    for (const QString& key : image.textKeys()) {
        empty.setText(key, image.text(key));
    }
    return empty;
}

} // namespace imaging::operations
