// Metafiles built record by record, whose device pixels are the pixels of the pictures drawn of
// them.
#pragma once

#include "imaging/picture_bytes.h"

#include <QImage>

#include <random>
#include <string_view>

namespace metafile::testing {

using imaging::testing::Bytes;
using imaging::testing::encoded;
using imaging::testing::joined;
using imaging::testing::put16;
using imaging::testing::put32;
using imaging::testing::putBytes;
using imaging::testing::set32;

// One pixel of the device is a millimetre, so that frame and pixels agree.
class EmfFile {
  public:
    EmfFile(int width, int height) : width_(width), height_(height) {}

    EmfFile& add(std::uint32_t type, const std::vector<std::int32_t>& words = {});
    EmfFile& addBytes(std::uint32_t type, const Bytes& body);

    // Usual sequences.
    EmfFile& pen(int handle, int style, int width, std::uint32_t colour); // made and selected
    EmfFile& brush(int handle, std::uint32_t colour);
    EmfFile& stock(int number);
    EmfFile& rectangle(int left, int top, int right, int bottom);
    EmfFile& text(int x, int y, std::u16string_view characters, const std::vector<int>& advances,
                  int options = 0);
    EmfFile& font(int handle, int height, int escapement, std::u16string_view family,
                  int characterSet = 0);

    Bytes bytes() const; // header, records, end
    QImage drawn(double scale = 1) const;

  private:
    int width_;
    int height_;
    Bytes records_;
};

// Coordinates go in their usual order; the file has them backwards.
class WmfFile {
  public:
    WmfFile& add(std::uint16_t type, const std::vector<int>& words = {});
    WmfFile& addBytes(std::uint16_t type, const Bytes& body);
    WmfFile& window(int x, int y, int width, int height);

    Bytes plain() const;
    Bytes placeable(int left, int top, int right, int bottom, int unitsPerInch) const;

  private:
    Bytes records_;
};

// Colours as files hold them.
constexpr std::uint32_t colour(int red, int green, int blue) {
    return static_cast<std::uint32_t>(red | green << 8 | blue << 16);
}

// A bitmap of 24-bit pixels told row by row from the top; the file has them from the bottom.
Bytes bitmapHeader(int width, int height, int bits = 24);
Bytes bitmapPixels(int width, const std::vector<QRgb>& pixels);

// How long drawing takes on a busy machine must not matter: only counted work ends it.
inline double stoppedClock() {
    return 0;
}

QImage drawnMetafile(const Bytes& bytes, QSize size);

// Draws the metafile many times, each time with a few other bytes from that place on. Throws only
// what a broken metafile must not throw.
void drawWithRandomBytes(const Bytes& sound, std::size_t from, std::mt19937& random);

// The smallest rectangle with all pixels that are not white.
QRect inkOf(const QImage& image);

} // namespace metafile::testing
