// BMP: 24 bits a pixel, or 32 with a header that tells where the alpha is, which other programs
// need to believe in it.
// Source: [MS-WMF] 2.2.2.4 (BITMAPV4HEADER).
#include "imaging/encoding/dib_writer.h"
#include "imaging/encoding/formats.h"

namespace imaging {

namespace {

constexpr std::uint32_t kFileHeader = 14;
constexpr std::uint32_t kV4Header = 108;
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kAlphaBitFields = 6;
constexpr std::uint32_t kStandardColours = 0x73524742; // "sRGB"

void writeFileHeader(ByteWriter& out, std::uint32_t dibHeader, std::size_t pixels) {
    const std::uint32_t pixelsAt = kFileHeader + dibHeader;
    out.u8('B');
    out.u8('M');
    out.u32s({pixelsAt + static_cast<std::uint32_t>(pixels), 0, pixelsAt});
}

void writeRestOfV4Header(ByteWriter& out) {
    constexpr std::size_t kEndpointsAndGamma = 48; // unused with standard colours
    out.u32s({0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000});
    out.u32(kStandardColours);
    out.zeros(kEndpointsAndGamma);
}

} // namespace

std::vector<std::byte> encodeBmp(const QImage& image) {
    const Transparency transparency = transparencyOf(image);
    const bool hasAlpha = transparency != Transparency::None;
    DibForm form;
    form.size = image.size();
    form.bitsPerPixel = hasAlpha ? 32 : 24;
    form.headerBytes = hasAlpha ? kV4Header : kDibHeaderBytes;
    // Many programs leave the alpha at nothing in files that promise it, so readers take a picture
    // without any for opaque. Only this compression says that it is meant.
    if (hasAlpha) {
        form.compression = transparency == Transparency::All ? kAlphaBitFields : kBitFields;
    }
    form.dotsPerMetre = {image.dotsPerMeterX(), image.dotsPerMeterY()};
    const std::size_t pixels = dibBytes(form.size, form.bitsPerPixel);
    form.imageBytes = static_cast<std::uint32_t>(pixels);
    ByteWriter out;
    out.reserve(kFileHeader + form.headerBytes + pixels);
    writeFileHeader(out, form.headerBytes, pixels);
    writeDibHeader(out, form);
    if (hasAlpha) {
        writeRestOfV4Header(out);
    }
    writeDibRows(out, image, form.bitsPerPixel);
    return out.take();
}

} // namespace imaging
