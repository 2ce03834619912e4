#include "imaging/decoders.h"
#include "imaging/dib_reader.h"

#include <algorithm>

namespace imaging {

namespace {

constexpr std::size_t kFileHeader = 14; // "BM", size, reserved, offset of the pixels

DibHeader headerOf(std::span<const std::byte> bytes) {
    return readDibHeader(ByteReader(bytes).rest(kFileHeader), DibUse::File);
}

PictureFacts factsOf(const DibHeader& header) {
    return rasterFacts(PictureKind::Bmp, {header.width, header.height}, header.bitsPerPixel);
}

// Some writers leave the offset out or point into the header; the pixels then follow the palette.
std::size_t pixelsAt(const ByteReader& file, const DibHeader& header) {
    const std::size_t stated = file.u32(10);
    const std::size_t least = kFileHeader + header.paletteAt;
    return stated < least ? kFileHeader + header.pixelsAt : stated;
}

// The palette ends where the pixels begin, whatever its stated number of colours.
void limitPalette(DibHeader& header, std::size_t pixels) {
    const std::size_t room = (pixels - kFileHeader - header.paletteAt) / header.paletteEntrySize;
    header.paletteEntries = std::min(header.paletteEntries, room);
}

RasterPicture decodeEmbedded(std::span<const std::byte> bytes, const DibHeader& header) {
    const char* const format = header.compression == DibCompression::Png ? "PNG" : "JPG";
    const std::optional<QImage> image = readEmbedded(bytes, format, {header.width, header.height});
    if (!image) {
        throw DecodeError("the picture inside the bitmap cannot be read");
    }
    return {factsOf(header), *image};
}

} // namespace

PictureFacts measureBmp(std::span<const std::byte> bytes) {
    return factsOf(headerOf(bytes));
}

RasterPicture decodeBmp(std::span<const std::byte> bytes) {
    const ByteReader file(bytes);
    DibHeader header = headerOf(bytes);
    const std::size_t pixels = pixelsAt(file, header);
    if (header.compression == DibCompression::Jpeg || header.compression == DibCompression::Png) {
        return decodeEmbedded(file.rest(pixels), header);
    }
    limitPalette(header, pixels);
    return {factsOf(header),
            readDibPixels(file.rest(kFileHeader), header, pixels - kFileHeader, DibUse::File)};
}

} // namespace imaging
