#include "imaging/decoders.h"
#include "imaging/png_reader.h"
#include "imaging/quiet_reading.h"

#include <QBuffer>
#include <QImageReader>

namespace imaging {

void limitReaders() {
    constexpr int kMebibytes = 192;
    static const bool isSet = [] {
        QImageReader::setAllocationLimit(kMebibytes);
        return true;
    }();
    (void)isSet;
}

namespace {

std::optional<QImage> readByQt(std::span<const std::byte> bytes, const char* format, QSize size) {
    const QuietReading quiet;
    limitReaders();
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, format);
    if (reader.size() != size) {
        return std::nullopt;
    }
    QImage image = reader.read();
    if (image.isNull() || image.size() != size) {
        return std::nullopt;
    }
    // In place where the depth allows it: a second copy of a large picture is too much.
    image.convertTo(QImage::Format_ARGB32);
    return image;
}

} // namespace

std::optional<QImage> readEmbedded(std::span<const std::byte> bytes, const char* format,
                                   QSize size) {
    if (!isPng(bytes) && QByteArrayView(format).compare("png", Qt::CaseInsensitive) == 0) {
        return std::nullopt; // Qt would find out the same, and libpng print it
    }
    if (!isPng(bytes)) {
        return readByQt(bytes, format, size);
    }
    try {
        return measurePng(bytes) == size ? std::optional(readPng(bytes)) : std::nullopt;
    } catch (const DecodeError&) {
        return std::nullopt; // the caller's words for it name the file around it
    }
}

} // namespace imaging
