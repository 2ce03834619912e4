#include "metafile/plus/plus_images.h"

#include "imaging/decoders.h"
#include "imaging/new_image.h"
#include "imaging/png_reader.h"
#include "imaging/quiet_reading.h"
#include "metafile/plus/plus_fields.h"
#include "metafile/records/bitmap_reader.h"

#include <QBuffer>
#include <QImageReader>

namespace metafile {

namespace {

constexpr std::uint32_t kBitmap = 1;
constexpr std::uint32_t kMetafile = 2;
constexpr std::uint32_t kAlphaFlag = 0x00040000;
constexpr std::uint32_t kIndexedFlag = 0x00010000;
constexpr std::uint32_t kFourBits = 0x00030402;
constexpr std::uint32_t kArgb1555 = 0x00061007;

struct Layout {
    int width = 0;
    int height = 0;
    int stride = 0;
    std::uint32_t format = 0;
    bool compressed = false;
};

Layout readLayout(PlusCursor& in) {
    Layout layout;
    layout.width = in.i32();
    layout.height = in.i32();
    layout.stride = in.i32();
    layout.format = in.u32();
    layout.compressed = in.u32() == 1;
    return layout;
}

void requireModest(std::int64_t width, std::int64_t height) {
    imaging::requireSensibleSize(width, height);
    if (width * height > kMaximumBitmapPixels) {
        throw imaging::DecodeError("a picture inside the metafile has more than 24 million pixels");
    }
}

// In place where the depth allows it: a second copy of a large picture is too much.
QImage inArgb(QImage image) {
    image.convertTo(QImage::Format_ARGB32);
    return image;
}

QImage readCompressed(std::span<const std::byte> bytes) {
    if (imaging::isPng(bytes)) {
        const QSize size = imaging::measurePng(bytes);
        requireModest(size.width(), size.height());
        return imaging::readPng(bytes);
    }
    const imaging::QuietReading quiet;
    imaging::limitReaders();
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    const auto kind = imaging::sniff(bytes);
    if (kind && *kind != imaging::PictureKind::Jpg) {
        const QSize size = imaging::measure(bytes).pixels;
        requireModest(size.width(), size.height());
        return inArgb(imaging::decode(bytes).image);
    }
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!reader.size().isEmpty()) {
        requireModest(reader.size().width(), reader.size().height());
    }
    QImage image = reader.read();
    if (image.isNull()) {
        throw imaging::DecodeError("a picture inside the metafile cannot be read");
    }
    return inArgb(std::move(image));
}

QImage::Format qtFormat(std::uint32_t format) {
    switch (format) {
    case 0x00101004:
        return QImage::Format_Grayscale16;
    case 0x00030101:
        return QImage::Format_Mono;
    case 0x00030803:
        return QImage::Format_Indexed8;
    case 0x00021005:
        return QImage::Format_RGB555;
    case 0x00021006:
        return QImage::Format_RGB16;
    case 0x00021808:
        return QImage::Format_BGR888;
    case 0x00022009:
        return QImage::Format_RGB32;
    case 0x0026200A:
        return QImage::Format_ARGB32;
    case 0x000E200B:
        return QImage::Format_ARGB32_Premultiplied;
    default:
        throw imaging::DecodeError("a picture inside the metafile has an unknown pixel format");
    }
}

QList<QRgb> readPalette(PlusCursor& in) {
    in.u32(); // flags
    QList<QRgb> colours;
    for (std::size_t left = in.count(4); left > 0; --left) {
        colours.append(in.colour());
    }
    return colours;
}

QRgb fromArgb1555(unsigned pixel) {
    const auto wide = [](unsigned five) { return static_cast<int>((five & 0x1FU) * 255 / 0x1F); };
    return qRgba(wide(pixel >> 10U), wide(pixel >> 5U), wide(pixel), pixel >> 15U != 0 ? 255 : 0);
}

// Formats that Qt does not have: four bits a pixel, and five a colour with one of alpha.
QImage readByHand(const Layout& layout, std::span<const std::byte> pixels,
                  const QList<QRgb>& palette) {
    QImage image = imaging::newImage({layout.width, layout.height}, QImage::Format_ARGB32);
    for (int y = 0; y < layout.height; ++y) {
        const imaging::ByteReader row(
            pixels.subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(layout.stride)));
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < layout.width; ++x) {
            const auto column = static_cast<std::size_t>(x);
            if (layout.format == kArgb1555) {
                out[x] = fromArgb1555(row.u16(2 * column));
                continue;
            }
            const unsigned both = row.u8(column / 2);
            const unsigned index = x % 2 == 0 ? both >> 4U : both & 0xFU;
            out[x] = palette.value(static_cast<qsizetype>(index), qRgb(0, 0, 0));
        }
    }
    return image;
}

QImage readPixels(const Layout& layout, PlusCursor& in) {
    QList<QRgb> palette;
    if ((layout.format & kIndexedFlag) != 0) {
        palette = readPalette(in);
    }
    const auto bits = static_cast<std::int64_t>(layout.format >> 8U & 0xFFU);
    const auto pixels = in.rest();
    const std::int64_t needed = std::int64_t{layout.stride} * (layout.height - 1) +
                                (std::int64_t{layout.width} * bits + 7) / 8;
    if (layout.stride < (std::int64_t{layout.width} * bits + 7) / 8 ||
        static_cast<std::int64_t>(pixels.size()) < needed) {
        throw imaging::DecodeError("a picture inside the metafile is cut short");
    }
    if (layout.format == kFourBits || layout.format == kArgb1555) {
        return readByHand(layout, pixels, palette);
    }
    QImage image(reinterpret_cast<const uchar*>(pixels.data()), layout.width, layout.height,
                 layout.stride, qtFormat(layout.format));
    if (!palette.isEmpty()) {
        // Pixels may name colours that are not there.
        palette.resize(bits == 1 ? 2 : 256, qRgb(0, 0, 0));
        image.setColorTable(palette);
    }
    const bool multiplied = image.format() == QImage::Format_ARGB32_Premultiplied;
    return multiplied ? image.copy() : image.convertToFormat(QImage::Format_ARGB32);
}

// A metafile as files have it: placeable ones come with two more bytes behind their first header.
QByteArray metafileOf(std::span<const std::byte> bytes) {
    constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
    constexpr std::size_t kPlaceableHeader = 22;
    constexpr unsigned kWordsOfNextHeader = 9;
    const imaging::ByteReader in(bytes);
    QByteArray metafile(reinterpret_cast<const char*>(bytes.data()),
                        static_cast<qsizetype>(bytes.size()));
    const bool isPadded = in.has(0, kPlaceableHeader + 6) && in.u32(0) == kPlaceableKey &&
                          in.u16(kPlaceableHeader) == 0 &&
                          in.u16(kPlaceableHeader + 4) == kWordsOfNextHeader;
    if (isPadded) {
        metafile.remove(kPlaceableHeader, 2);
    }
    return metafile;
}

} // namespace

PlusImage readPlusImage(std::span<const std::byte> data) {
    PlusCursor in(data);
    in.u32(); // version
    const std::uint32_t type = in.u32();
    if (type == kMetafile) {
        in.u32(); // which kind: its bytes tell
        const std::size_t size = in.count(1);
        return {{}, metafileOf(in.bytes(size))};
    }
    if (type != kBitmap) {
        throw imaging::DecodeError("a picture inside the metafile is of an unknown kind");
    }
    const Layout layout = readLayout(in);
    if (layout.compressed) {
        return {readCompressed(in.rest()), {}};
    }
    requireModest(layout.width, layout.height);
    return {readPixels(layout, in), {}};
}

bool plusImageHasAlpha(std::span<const std::byte> data) {
    PlusCursor in(data);
    in.u32();
    if (in.u32() != kBitmap) {
        return false;
    }
    const Layout layout = readLayout(in);
    if (!layout.compressed) {
        return (layout.format & kAlphaFlag) != 0;
    }
    // PNG and GIF pictures may have it, JPG ones never.
    const auto kind = imaging::sniff(in.rest());
    return !kind || *kind == imaging::PictureKind::Gif;
}

} // namespace metafile
