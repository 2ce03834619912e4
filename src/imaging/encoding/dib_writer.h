// Device-independent bitmaps as BMP files, icon frames and EMF records hold them.
// Source: [MS-WMF] 2.2.2.3 (BITMAPINFOHEADER) to 2.2.2.5 (BITMAPV5HEADER).
#pragma once

#include "imaging/encoding/byte_writer.h"

#include <QImage>

namespace imaging {

inline constexpr std::uint32_t kDibHeaderBytes = 40; // of the plain header

struct DibForm {
    QSize size;
    int bitsPerPixel = 24;
    std::uint32_t headerBytes = kDibHeaderBytes; // of what is written in all, more may follow
    std::uint32_t compression = 0;
    int heightFactor = 1; // 2 in icon frames, which count the mask's rows
    std::uint32_t imageBytes = 0;
    QSize dotsPerMetre{0, 0}; // 0: not told, as must be in icons
};

// The first 40 bytes of a header.
void writeDibHeader(ByteWriter& out, const DibForm& form);

// Bytes of all rows.
std::size_t dibBytes(QSize size, int bitsPerPixel);

// `count` rows of a 32-bit image from row `first` on, bottom-up; colours as they are, with 24 bits
// without alpha. The image has that many rows.
void writeDibRows(ByteWriter& out, const QImage& image, int bitsPerPixel, int first, int count);
inline void writeDibRows(ByteWriter& out, const QImage& image, int bitsPerPixel) {
    writeDibRows(out, image, bitsPerPixel, 0, image.height());
}

// A bit a pixel, bottom-up, set where nothing of the ARGB32 image is seen.
void writeMask(ByteWriter& out, const QImage& image);

} // namespace imaging
