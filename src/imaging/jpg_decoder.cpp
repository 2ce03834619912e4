// JPG through Qt's reader, turned upright as its EXIF orientation says.
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"

#include <QBuffer>
#include <QImageReader>

namespace imaging {

namespace {

// A reader over the bytes; both live as long as this does.
struct Reader {
    explicit Reader(std::span<const std::byte> bytes)
        : data(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<qsizetype>(bytes.size()))),
          buffer(&data),
          reader(&buffer, "JPG") {
        reader.setAutoTransform(true);
        size = reader.size();
        if (!size.isValid())
            throw DecodeError("the JPG picture's header cannot be read");
        requireSensibleSize(size.width(), size.height());
        if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90))
            size.transpose();
    }

    PictureFacts facts() const {
        const bool gray = reader.imageFormat() == QImage::Format_Grayscale8;
        return rasterFacts(PictureKind::Jpg, size, gray ? 8 : 24);
    }

    QByteArray data;
    QBuffer buffer;
    QImageReader reader;
    QSize size;
};

} // namespace

PictureFacts measureJpg(std::span<const std::byte> bytes) {
    return Reader(bytes).facts();
}

Picture decodeJpg(std::span<const std::byte> bytes) {
    QImageReader::setAllocationLimit(kAllocationLimit);
    Reader reader(bytes);
    const PictureFacts facts = reader.facts();
    const QImage image = reader.reader.read();
    if (image.isNull())
        throw DecodeError("the JPG picture cannot be read");
    return {facts, image};
}

} // namespace imaging
