#include "metafile/records/bitmap_reader.h"

#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/dib_reader.h"
#include "imaging/new_image.h"

#include <algorithm>

namespace metafile {

namespace {

void requireModestSize(std::int64_t width, std::int64_t height) {
    imaging::requireSensibleSize(width, height);
    if (width * height > kMaximumBitmapPixels) {
        throw imaging::DecodeError("a picture inside the metafile has more than 24 million pixels");
    }
}

void put32(std::vector<std::byte>& bytes, QRgb colour) {
    for (const int value : {qBlue(colour), qGreen(colour), qRed(colour), 0}) {
        bytes.push_back(static_cast<std::byte>(value));
    }
}

// The header again, with the palette's colours in the place of their numbers.
std::vector<std::byte> withColours(std::span<const std::byte> bytes,
                                   const imaging::DibHeader& header, const Palette& palette) {
    const imaging::ByteReader in(bytes);
    std::vector<std::byte> result(bytes.begin(),
                                  bytes.begin() + static_cast<std::ptrdiff_t>(header.paletteAt));
    for (std::size_t i = 0; i < header.paletteEntries; ++i) {
        const std::size_t at = header.paletteAt + 2 * i;
        const std::size_t index = in.has(at, 2) ? in.u16(at) : 0;
        put32(result, index < palette.colours.size() ? palette.colours[index] : qRgb(0, 0, 0));
    }
    return result;
}

imaging::DibUse useOf(AlphaUse alpha) {
    return alpha == AlphaUse::Premultiplied ? imaging::DibUse::Blend : imaging::DibUse::File;
}

// JPG and PNG pictures stand in a bitmap's place.
std::optional<QImage> readCompressed(const imaging::DibHeader& header,
                                     std::span<const std::byte> pixels) {
    const bool jpg = header.compression == imaging::DibCompression::Jpeg;
    if (!jpg && header.compression != imaging::DibCompression::Png) {
        return std::nullopt;
    }
    auto image = imaging::readEmbedded(pixels, jpg ? "jpg" : "png", {header.width, header.height});
    if (!image) {
        throw imaging::DecodeError("a picture inside the metafile cannot be read");
    }
    return image;
}

QRgb oldPixel(const imaging::ByteReader& in, std::size_t row, int x, int bits) {
    const auto column = static_cast<std::size_t>(x);
    if (bits == 1) {
        return (in.u8(row + column / 8) >> (7 - column % 8) & 1U) != 0 ? qRgb(255, 255, 255)
                                                                       : qRgb(0, 0, 0);
    }
    if (bits == 24 || bits == 32) {
        const std::size_t at = row + column * static_cast<std::size_t>(bits / 8);
        return qRgb(in.u8(at + 2), in.u8(at + 1), in.u8(at));
    }
    throw imaging::DecodeError("a bitmap's colours are of a device that is not known");
}

} // namespace

QImage readBitmap(const BitmapSource& source) {
    imaging::DibHeader header = imaging::readDibHeader(source.header, useOf(source.alpha));
    requireModestSize(header.width, header.height);
    if (const auto embedded = readCompressed(header, source.pixels)) {
        return embedded->convertToFormat(source.alpha == AlphaUse::Premultiplied
                                             ? QImage::Format_ARGB32_Premultiplied
                                             : QImage::Format_ARGB32);
    }
    std::vector<std::byte> replaced;
    std::vector<QRgb> colours;
    if (source.palette != nullptr && header.paletteEntries > 0) {
        replaced = withColours(source.header, header, *source.palette);
        header.paletteEntrySize = 4;
        colours = imaging::readDibPalette(replaced, header);
    } else {
        colours = imaging::readDibPalette(source.header, header);
    }
    // Two colours that nothing tells: a bit that is set is ink, the others are the ground.
    if (header.bitsPerPixel == 1 && colours.empty()) {
        colours = {qRgb(255, 255, 255), qRgb(0, 0, 0)};
    }
    QImage image = imaging::readDibPixels(source.pixels, header, colours, useOf(source.alpha));
    if (source.alpha == AlphaUse::Premultiplied) {
        image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return image;
}

QImage readPackedBitmap(std::span<const std::byte> bytes, const Palette* palette) {
    const imaging::DibHeader header = imaging::readDibHeader(bytes, imaging::DibUse::File);
    std::size_t pixelsAt = header.pixelsAt;
    if (palette != nullptr) {
        pixelsAt = header.paletteAt + 2 * header.paletteEntries;
    }
    const imaging::ByteReader in(bytes);
    return readBitmap({bytes, in.rest(pixelsAt), palette, AlphaUse::Ignored});
}

Bitmap readOldBitmap(std::span<const std::byte> header, std::span<const std::byte> pixels) {
    const imaging::ByteReader in(header);
    const int width = in.i16(2);
    const int height = in.i16(4);
    const int rowBytes = in.i16(6);
    const int bits = in.u8(9);
    requireModestSize(width, height);
    if (rowBytes < 1) {
        throw imaging::DecodeError("a bitmap inside the metafile cannot be read");
    }
    const imaging::ByteReader data(pixels);
    data.part(0, static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height));
    Bitmap bitmap{imaging::newImage({width, height}, QImage::Format_ARGB32), bits == 1};
    for (int y = 0; y < height; ++y) {
        auto* out = reinterpret_cast<QRgb*>(bitmap.image.scanLine(y));
        const std::size_t row = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(y);
        for (int x = 0; x < width; ++x) {
            out[x] = oldPixel(data, row, x, bits);
        }
    }
    return bitmap;
}

} // namespace metafile
