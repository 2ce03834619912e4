#include "imaging/new_image.h"

namespace imaging {

void requireSensibleSize(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) {
        throw DecodeError("the picture has no size");
    }
    if (width > kMaximumPixels || height > kMaximumPixels || width * height > kMaximumPixels) {
        throw DecodeError("the picture has more than 40 million pixels");
    }
}

QImage newImage(QSize size, QImage::Format format) {
    QImage image(size, format);
    if (image.isNull()) {
        throw DecodeError("there is no memory for the picture");
    }
    image.fill(Qt::transparent);
    return image;
}

} // namespace imaging
