// Picture files built byte by byte, so that every pixel of them is known.
#pragma once

#include <QImage>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace imaging::testing {

using Bytes = std::vector<std::byte>;

void put16(Bytes& bytes, unsigned value);
void put32(Bytes& bytes, std::uint32_t value);
void putBytes(Bytes& bytes, std::initializer_list<int> values);
void set32(Bytes& bytes, std::size_t at, std::uint32_t value);
Bytes joined(const Bytes& first, const Bytes& second);

// What a bitmap's header says.
struct Dib {
    int width = 0;
    int height = 0; // negative: top-down
    int bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t colours = 0;
};

Bytes infoHeader(const Dib& dib);

// A BMP file: "BM" header, `dib` (header, masks, palette) and pixels.
Bytes bmpFile(const Bytes& dib, const Bytes& pixels);

struct IconFrame {
    Bytes data;
    int hotX = 0;
    int hotY = 0;
};
Bytes iconFile(int type, const std::vector<IconFrame>& frames);

// A frame of 32-bit pixels (rows from the bottom) with a mask of one byte a row, padded.
Bytes iconFrame32(int width, int height, const std::vector<std::uint32_t>& pixels,
                  const std::vector<int>& maskRows);

// A GIF of four colours (black, red, green, blue), LZW-coded without compression.
struct Gif {
    int screenWidth = 0;
    int screenHeight = 0;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    int transparent = -1;
    std::vector<int> indexes;
};
Bytes gifFile(const Gif& gif);

Bytes encoded(const QImage& image, const char* format);

// A JPG that its EXIF data turn by a quarter.
Bytes turnedJpg(const QImage& image);

// One sound picture of every kind that is decoded or measured.
std::vector<Bytes> oneOfEachKind();

} // namespace imaging::testing
