#include "imaging/picture.h"

#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/image_scaling.h"
#include "imaging/metafile/metafile.h"

#include <QPainter>

#include <cstdint>
#include <new>
#include <utility>

namespace imaging {

namespace {

bool isRaster(PictureKind kind) {
    return kind != PictureKind::Wmf && kind != PictureKind::Emf;
}

PictureKind kindOf(std::span<const std::byte> bytes) {
    const auto kind = sniff(bytes);
    if (!kind)
        throw DecodeError("this is no picture of a known kind");
    return *kind;
}

QByteArray copyOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

} // namespace

void requireSensibleSize(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1)
        throw DecodeError("the picture has no size");
    if (width > kMaximumPixels || height > kMaximumPixels || width * height > kMaximumPixels)
        throw DecodeError("the picture has more than 40 million pixels");
}

QImage newImage(QSize size, QImage::Format format) {
    QImage image(size, format);
    if (image.isNull())
        throw DecodeError("there is no memory for the picture");
    image.fill(Qt::transparent);
    return image;
}

PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel) {
    constexpr double kTwipsPerPixel = 15;
    return {kind,
            pixels,
            {pixels.height() * kTwipsPerPixel, pixels.width() * kTwipsPerPixel},
            bitsPerPixel,
            {}};
}

QString typeCodeOf(PictureKind kind) {
    switch (kind) {
    case PictureKind::Wmf:
        return QStringLiteral("WMF");
    case PictureKind::Emf:
        return QStringLiteral("EMF");
    case PictureKind::Ico:
        return QStringLiteral("ICO");
    case PictureKind::Cur:
        return QStringLiteral("CUR");
    case PictureKind::Bmp:
        return QStringLiteral("BMP");
    case PictureKind::Gif:
        return QStringLiteral("GIF");
    case PictureKind::Jpg:
        break;
    }
    return QStringLiteral("JPG");
}

std::optional<PictureKind> sniff(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    if (!in.has(0, 6))
        return std::nullopt;
    if (in.u16(0) == 0x4D42) // "BM"
        return PictureKind::Bmp;
    if (in.u32(0) == 0x38464947) // "GIF8"
        return PictureKind::Gif;
    if (in.u16(0) == 0xD8FF && in.u8(2) == 0xFF)
        return PictureKind::Jpg;
    if (isEmf(bytes))
        return PictureKind::Emf;
    if (isWmf(bytes))
        return PictureKind::Wmf;
    if (in.u16(0) == 0 && in.u16(4) > 0 && (in.u16(2) == 1 || in.u16(2) == 2))
        return in.u16(2) == 1 ? PictureKind::Ico : PictureKind::Cur;
    return std::nullopt;
}

PictureFacts measure(std::span<const std::byte> bytes) {
    switch (kindOf(bytes)) {
    case PictureKind::Wmf:
        return measureWmf(bytes);
    case PictureKind::Emf:
        return measureEmf(bytes);
    case PictureKind::Ico:
    case PictureKind::Cur:
        return measureIcon(bytes);
    case PictureKind::Bmp:
        return measureBmp(bytes);
    case PictureKind::Gif:
        return measureGif(bytes);
    case PictureKind::Jpg:
        break;
    }
    return measureJpg(bytes);
}

Picture decode(std::span<const std::byte> bytes) {
    try {
        switch (kindOf(bytes)) {
        case PictureKind::Wmf:
            return {measureWmf(bytes), copyOf(bytes)};
        case PictureKind::Emf:
            return {measureEmf(bytes), copyOf(bytes)};
        case PictureKind::Ico:
        case PictureKind::Cur:
            return decodeIcon(bytes);
        case PictureKind::Bmp:
            return decodeBmp(bytes);
        case PictureKind::Gif:
            return decodeGif(bytes);
        case PictureKind::Jpg:
            break;
        }
        return decodeJpg(bytes);
    } catch (const std::bad_alloc&) {
        throw DecodeError("there is no memory for the picture");
    }
}

Picture::Picture(PictureFacts facts, QImage image) : facts_(facts), image_(std::move(image)) {}

Picture::Picture(PictureFacts facts, QByteArray metafile)
    : facts_(facts), metafile_(std::move(metafile)) {}

QImage Picture::drawnAt(QSize size) const {
    if (drawn_.size() != size) {
        const auto bytes =
            std::span(metafile_.constData(), static_cast<std::size_t>(metafile_.size()));
        const metafile::Drawing drawing = metafile::draw(std::as_bytes(bytes), size);
        drawn_ = drawing.image;
        drawnInPart_ = drawing.completeness == metafile::Completeness::Part;
    }
    return drawn_;
}

QImage Picture::scaledTo(QSize box) const {
    if (box.isEmpty())
        return {};
    QSize size = facts_.pixels;
    const bool fits = size.width() <= box.width() && size.height() <= box.height();
    if (!fits || !isRaster(facts_.kind))
        size.scale(box, Qt::KeepAspectRatio);
    size = size.expandedTo({1, 1});
    if (isRaster(facts_.kind))
        return size == image_.size() ? image_ : smoothlyScaled(image_, size);
    return drawnAt(size);
}

void Picture::paint(QPainter& painter, const QRectF& target) const {
    // Scaled with averaging first: painting alone would drop pixels of a large picture.
    const QSizeF device = painter.deviceTransform().mapRect(target).size();
    const QSize needed = device.toSize().expandedTo({1, 1});
    const bool shrinks = needed.width() < image_.width() && needed.height() < image_.height();
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!isRaster(facts_.kind))
        painter.drawImage(target, drawnAt(needed));
    else
        painter.drawImage(target, shrinks ? smoothlyScaled(image_, needed) : image_);
    painter.restore();
}

} // namespace imaging
