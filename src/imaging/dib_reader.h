// Device-independent bitmaps: the header and pixels that BMP files and icon frames share.
// Sources: [MS-WMF] 2.2.2 (BITMAPCOREHEADER to BITMAPV5HEADER, compressions); the OS/2 headers as
// in "OS/2 Presentation Manager Programming Reference", volume 3.
#pragma once

#include "imaging/byte_reader.h"

#include <QImage>

#include <array>
#include <vector>

namespace imaging {

enum class DibCompression : std::uint32_t {
    None = 0,
    Rle8 = 1,
    Rle4 = 2,
    BitFields = 3,
    Jpeg = 4,
    Png = 5,
    AlphaBitFields = 6,
};

struct DibHeader {
    std::uint32_t headerSize = 0;
    int width = 0;
    int height = 0; // always positive
    bool topDown = false;
    int bitsPerPixel = 0;
    DibCompression compression = DibCompression::None;
    std::array<std::uint32_t, 4> masks{}; // red, green, blue, alpha
    std::size_t paletteAt = 0;            // bytes from the header's start
    std::size_t paletteEntries = 0;       // as many as there are between header and pixels at most
    std::size_t paletteEntrySize = 4;     // 3 in OS/2 1.x headers
    std::size_t pixelsAt = 0;             // behind header, masks and palette
};

// An icon frame's height counts the mask's rows too. The 32-bit pixels of icon frames and of
// bitmaps to blend have alpha even where no mask says so.
enum class DibUse { File, IconFrame, Blend };

// Reads and checks the header that begins `bytes`; the size is checked against the limit.
DibHeader readDibHeader(std::span<const std::byte> bytes, DibUse use);

// Whether any pixel of an ARGB32 image is not wholly transparent. Where none is, the writer left
// alpha unused.
bool hasAnyAlpha(const QImage& image);

// Bytes of one row of `bits` bits a pixel, padded to four bytes.
std::size_t dibRowBytes(int width, int bits);

// The colours; missing ones are black.
std::vector<QRgb> readDibPalette(std::span<const std::byte> bytes, const DibHeader& header);

// The pixels that begin at byte `pixelsAt` of `bytes`. What is missing at the end stays
// transparent; DecodeError when not even the first row is there. The image is ARGB32, opaque
// unless the header's masks (or 32-bit pixels with another use than File) hold alpha.
QImage readDibPixels(std::span<const std::byte> bytes, const DibHeader& header,
                     std::size_t pixelsAt, DibUse use);

// The same, of pixels that lie apart from their header.
QImage readDibPixels(std::span<const std::byte> pixels, const DibHeader& header,
                     const std::vector<QRgb>& palette, DibUse use);

} // namespace imaging
