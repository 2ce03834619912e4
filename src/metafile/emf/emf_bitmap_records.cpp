// EMF records that move blocks of pixels.
// Source: [MS-EMF] 2.3.1 (bitmaps).
#include "metafile/emf/emf_records.h"
#include "metafile/records/bitmap_reader.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

enum Type : std::uint32_t {
    BitBlt = 76,
    StretchBlt,
    MaskBlt,
    PlgBlt,
    SetDiBitsToDevice = 80,
    StretchDiBits = 81,
    AlphaBlend = 114,
    TransparentBlt = 116,
};

constexpr std::uint32_t kPaletteColours = 1;
constexpr std::uint8_t kCopySource = 0xCC;
constexpr std::uint8_t kKeepDestination = 0xAA;

Destination destinationOf(const QRectF& rectangle) {
    return {rectangle.topLeft(), rectangle.topRight(), rectangle.bottomLeft(), Placement::Logical};
}

QRectF rectangleWithSize(const imaging::ByteReader& in, std::size_t at) {
    return {pointAt(in, at), QSizeF(in.i32(at + 8), in.i32(at + 12))};
}

std::uint8_t operationAt(const imaging::ByteReader& in, std::size_t at) {
    return in.u8(at + 2);
}

// The colours' usage stands at `usageAt`, and behind it the places of header and pixels.
std::optional<QImage> sourceAt(const imaging::ByteReader& in, std::size_t usageAt,
                               const EmfReading& reading, AlphaUse alpha) {
    const auto header = partAt(in, usageAt + 4);
    if (header.empty()) {
        return std::nullopt;
    }
    const bool byPalette = in.u32(usageAt) == kPaletteColours;
    return readBitmap(
        {header, partAt(in, usageAt + 12), byPalette ? reading.palette() : nullptr, alpha});
}

std::optional<Bitmap> bitmapAt(const imaging::ByteReader& in, std::size_t usageAt,
                               const EmfReading& reading) {
    auto image = sourceAt(in, usageAt, reading, AlphaUse::Ignored);
    if (!image) {
        return std::nullopt;
    }
    return Bitmap{std::move(*image), false};
}

// Where the source's logical coordinates lie in its pixels.
QRectF sourcePart(const imaging::ByteReader& in, std::size_t cornerAt, QSizeF size) {
    const QTransform transform = transformAt(in, cornerAt + 8);
    const QRectF part(pointAt(in, cornerAt), size);
    // Writers that leave the transform empty mean none.
    return transform.isInvertible() ? transform.mapRect(part) : part;
}

// A plain copy tells no size of its source, so where axes are scaled its part is larger than all
// there is. Everybody draws the whole bitmap then.
void fitToSource(RasterBlit& blit) {
    if (!blit.source) {
        return;
    }
    const QSize size = blit.source->image.size();
    const QRectF whole({0, 0}, QSizeF(size));
    if (std::abs(blit.part.width()) > size.width() &&
        std::abs(blit.part.height()) > size.height()) {
        blit.part = whole;
    }
}

void readBlit(const EmfRecord& record, EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    const QRectF rectangle = rectangleWithSize(in, 24);
    RasterBlit blit;
    blit.destination = destinationOf(rectangle);
    blit.operation = operationAt(in, 40);
    blit.source = bitmapAt(in, 80, reading);
    const QSizeF size = record.type == StretchBlt ? QSizeF(in.i32(100), in.i32(104))
                                                  : QSizeF(rectangle.width(), rectangle.height());
    blit.part =
        record.type == StretchBlt ? QRectF(pointAt(in, 44), size) : sourcePart(in, 44, size);
    if (record.type == BitBlt) {
        fitToSource(blit);
    }
    if (record.type == MaskBlt) {
        blit.behindMask = in.u8(43);
        blit.mask = bitmapAt(in, 108, reading);
        blit.maskOffset = pointAt(in, 100);
    }
    reading.sink.take(blit);
}

void readParallelogram(const imaging::ByteReader& in, EmfReading& reading) {
    RasterBlit blit;
    blit.destination = {pointAt(in, 24), pointAt(in, 32), pointAt(in, 40), Placement::Logical};
    blit.operation = kCopySource;
    blit.part = QRectF(pointAt(in, 48), QSizeF(in.i32(56), in.i32(60)));
    blit.source = bitmapAt(in, 92, reading);
    blit.mask = bitmapAt(in, 120, reading);
    blit.maskOffset = pointAt(in, 112);
    blit.behindMask = kKeepDestination;
    reading.sink.take(blit);
}

// In a bitmap whose rows run upwards the part's y counts from the bottom.
QRectF partOf(std::span<const std::byte> header, const QImage& image, QPointF corner, QSizeF size) {
    const bool topDown = imaging::ByteReader(header).i32(8) < 0;
    if (!topDown) {
        corner.setY(image.height() - corner.y() - size.height());
    }
    return {corner, size};
}

// Pixels that go to the device one to one; only some of the bitmap's rows may be there.
void readToDevice(const imaging::ByteReader& in, EmfReading& reading) {
    const auto header = partAt(in, 48);
    const auto pixels = partAt(in, 56);
    const bool byPalette = in.u32(64) == kPaletteColours;
    RasterBlit blit;
    blit.operation = kCopySource;
    blit.source = Bitmap{
        readBitmap({header, pixels, byPalette ? reading.palette() : nullptr, AlphaUse::Ignored}),
        false};
    const QSizeF size(in.u32(40), in.u32(44));
    const QPointF firstRow(0, in.i32(68));
    blit.part = partOf(header, blit.source->image, pointAt(in, 32) - firstRow, size);
    const QPointF corner = pointAt(in, 24);
    blit.destination = {corner, corner + QPointF(size.width(), 0),
                        corner + QPointF(0, size.height()), Placement::DevicePixels};
    reading.sink.take(blit);
}

void readStretched(const imaging::ByteReader& in, EmfReading& reading) {
    RasterBlit blit;
    blit.destination = destinationOf(QRectF(pointAt(in, 24), QSizeF(in.i32(72), in.i32(76))));
    blit.operation = operationAt(in, 68);
    const QSizeF size(in.i32(40), in.i32(44));
    const auto header = partAt(in, 48);
    if (!header.empty()) {
        const bool byPalette = in.u32(64) == kPaletteColours;
        const Palette* palette = byPalette ? reading.palette() : nullptr;
        blit.source =
            Bitmap{readBitmap({header, partAt(in, 56), palette, AlphaUse::Ignored}), false};
        blit.part = partOf(header, blit.source->image, pointAt(in, 32), size);
    }
    reading.sink.take(blit);
}

void makeTransparent(QImage& image, QRgb key) {
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::replace(row, row + image.width(), key | 0xFF000000U, QRgb{0});
    }
}

void readBlended(const EmfRecord& record, EmfReading& reading) {
    constexpr std::uint8_t kSourceAlpha = 1;
    const imaging::ByteReader& in = record.in;
    AlphaBlit blit;
    blit.destination = destinationOf(rectangleWithSize(in, 24));
    blit.part = QRectF(pointAt(in, 44), QSizeF(in.i32(100), in.i32(104)));
    const bool blend = record.type == AlphaBlend;
    const bool ownAlpha = blend && in.u8(43) == kSourceAlpha;
    auto source = sourceAt(in, 80, reading, ownAlpha ? AlphaUse::Premultiplied : AlphaUse::Ignored);
    if (!source) {
        return;
    }
    if (blend) {
        blit.opacity = in.u8(42) / 255.0;
    } else {
        makeTransparent(*source, reading.colourAt(in, 40));
    }
    blit.source = source->convertToFormat(QImage::Format_ARGB32_Premultiplied);
    reading.sink.take(blit);
}

} // namespace

bool readEmfBitmap(const EmfRecord& record, EmfReading& reading) {
    switch (record.type) {
    case BitBlt:
    case StretchBlt:
    case MaskBlt:
        readBlit(record, reading);
        return true;
    case PlgBlt:
        readParallelogram(record.in, reading);
        return true;
    case SetDiBitsToDevice:
        readToDevice(record.in, reading);
        return true;
    case StretchDiBits:
        readStretched(record.in, reading);
        return true;
    case AlphaBlend:
    case TransparentBlt:
        readBlended(record, reading);
        return true;
    default:
        return false;
    }
}

} // namespace metafile
