#include "imaging/decoders.h"

#include <QBuffer>
#include <QImageReader>

namespace imaging {

std::optional<QImage> readEmbedded(std::span<const std::byte> bytes, const char* format,
                                   QSize size) {
    QImageReader::setAllocationLimit(kAllocationLimit);
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, format);
    if (reader.size() != size)
        return std::nullopt;
    QImage image = reader.read();
    if (image.isNull() || image.size() != size)
        return std::nullopt;
    // In place where the depth allows it: a second copy of a large picture is too much.
    image.convertTo(QImage::Format_ARGB32);
    return image;
}

} // namespace imaging
