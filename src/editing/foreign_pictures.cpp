#include "editing/foreign_pictures.h"

#include "imaging/encoding/encoders.h"
#include "imaging/picture_facts.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <stdexcept>

namespace editing {
namespace {

// A reader on bytes that must outlive it.
class Reading {
  public:
    explicit Reading(std::span<const std::byte> bytes)
        : bytes_(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                         static_cast<qsizetype>(bytes.size()))) {
        buffer_.setBuffer(&bytes_);
        buffer_.open(QIODevice::ReadOnly);
        reader_.setDevice(&buffer_);
        reader_.setAutoTransform(true);
    }

    QImageReader& reader() { return reader_; }
    bool isVector() { return reader_.format().startsWith("svg"); }

  private:
    QByteArray bytes_;
    QBuffer buffer_;
    QImageReader reader_;
};

bool isTooLarge(const QSize& size) {
    return static_cast<std::int64_t>(size.width()) * size.height() > imaging::kMaximumPixels;
}

} // namespace

std::optional<ForeignPicture> inspectForeign(std::span<const std::byte> bytes) {
    Reading reading(bytes);
    if (!reading.reader().canRead()) {
        return std::nullopt;
    }
    const QSize size = reading.reader().size();
    if (size.isEmpty() || (!reading.isVector() && isTooLarge(size))) {
        return std::nullopt;
    }
    return ForeignPicture{QString::fromLatin1(reading.reader().format()).toUpper(),
                          reading.isVector(), size};
}

std::vector<std::byte> foreignAsBmp(std::span<const std::byte> bytes, int longerSide) {
    Reading reading(bytes);
    QImageReader& reader = reading.reader();
    const QSize size = reader.size();
    if (reading.isVector()) {
        reader.setScaledSize(
            size.scaled(longerSide, longerSide, Qt::KeepAspectRatio).expandedTo({1, 1}));
    } else if (isTooLarge(size)) {
        throw std::runtime_error("the picture has too many pixels");
    }
    const QImage image = reader.read();
    if (image.isNull()) {
        throw std::runtime_error(reader.errorString().toStdString());
    }
    return imaging::encode(image, imaging::PictureKind::Bmp);
}

} // namespace editing
