// WMF records that move blocks of pixels.
// Source: [MS-WMF] 2.3.1 (bitmap records).
#include "metafile/records/bitmap_reader.h"
#include "metafile/wmf/wmf_records.h"

namespace metafile {

namespace {

enum Type : std::uint16_t {
    PatBlt = 0x061D,
    BitBlt = 0x0922,
    DibBitBlt = 0x0940,
    StretchBlt = 0x0B23,
    DibStretchBlt = 0x0B41,
    SetDibToDev = 0x0D33,
    StretchDib = 0x0F43,
};

constexpr std::uint16_t kPaletteColours = 1;
constexpr std::uint8_t kCopySource = 0xCC;

Destination destinationAt(const imaging::ByteReader& in, std::size_t cornerAt, QSizeF size) {
    const QPointF corner = pointBackwards(in, cornerAt);
    return {corner, corner + QPointF(size.width(), 0), corner + QPointF(0, size.height()),
            Placement::Logical};
}

Bitmap bitmapAt(const WmfRecord& record, std::size_t at) {
    constexpr std::size_t kOldHeader = 10;
    const imaging::ByteReader& in = record.in;
    if (record.type == BitBlt || record.type == StretchBlt) {
        return readOldBitmap(in.rest(at), in.rest(at + kOldHeader));
    }
    return {readPackedBitmap(in.rest(at), nullptr), false};
}

RasterBlit readBlit(const WmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    const bool stretches = record.type == StretchBlt || record.type == DibStretchBlt;
    RasterBlit blit;
    blit.operation = in.u8(8);
    std::size_t at = 10;
    QSizeF partSize;
    if (stretches) {
        partSize = sizeBackwards(in, at);
        at += 4;
    }
    const QPointF corner = pointBackwards(in, at);
    at += record.hasBitmap() ? 4 : 6;
    const QSizeF size = sizeBackwards(in, at);
    blit.destination = destinationAt(in, at + 4, size);
    blit.part = QRectF(corner, stretches ? partSize : size);
    if (record.hasBitmap()) {
        blit.source = bitmapAt(record, at + 8);
    }
    return blit;
}

RasterBlit readPattern(const imaging::ByteReader& in) {
    RasterBlit blit;
    blit.operation = in.u8(8);
    blit.destination = destinationAt(in, 14, sizeBackwards(in, 10));
    return blit;
}

// In a bitmap whose rows run upwards the part's y counts from the bottom.
QRectF partOf(const imaging::ByteReader& in, std::size_t bitmapAt, const QImage& image,
              QPointF corner, QSizeF size) {
    const bool topDown = in.has(bitmapAt, 12) && in.i32(bitmapAt + 8) < 0;
    if (!topDown) {
        corner.setY(image.height() - corner.y() - size.height());
    }
    return {corner, size};
}

RasterBlit readStretched(const imaging::ByteReader& in, const WmfReading& reading) {
    constexpr std::size_t kBitmapAt = 28;
    RasterBlit blit;
    blit.operation = in.u8(8);
    blit.destination = destinationAt(in, 24, sizeBackwards(in, 20));
    const bool byPalette = in.u16(10) == kPaletteColours;
    blit.source = Bitmap{
        readPackedBitmap(in.rest(kBitmapAt), byPalette ? reading.palette() : nullptr), false};
    blit.part =
        partOf(in, kBitmapAt, blit.source->image, pointBackwards(in, 16), sizeBackwards(in, 12));
    return blit;
}

RasterBlit readToDevice(const imaging::ByteReader& in, const WmfReading& reading) {
    constexpr std::size_t kBitmapAt = 24;
    RasterBlit blit;
    blit.operation = kCopySource;
    const QSizeF size = sizeBackwards(in, 16);
    blit.destination = destinationAt(in, 20, size);
    blit.destination.placement = Placement::DevicePixels;
    const bool byPalette = in.u16(6) == kPaletteColours;
    blit.source = Bitmap{
        readPackedBitmap(in.rest(kBitmapAt), byPalette ? reading.palette() : nullptr), false};
    blit.part = partOf(in, kBitmapAt, blit.source->image,
                       pointBackwards(in, 12) - QPointF(0, in.u16(10)), size);
    return blit;
}

} // namespace

bool readWmfBitmap(const WmfRecord& record, WmfReading& reading) {
    switch (record.type) {
    case BitBlt:
    case DibBitBlt:
    case StretchBlt:
    case DibStretchBlt:
        reading.sink.take(readBlit(record));
        return true;
    case PatBlt:
        reading.sink.take(readPattern(record.in));
        return true;
    case StretchDib:
        reading.sink.take(readStretched(record.in, reading));
        return true;
    case SetDibToDev:
        reading.sink.take(readToDevice(record.in, reading));
        return true;
    default:
        return false;
    }
}

} // namespace metafile
