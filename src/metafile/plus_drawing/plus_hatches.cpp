#include "metafile/plus_drawing/plus_hatches.h"

#include <array>
#include <cstdint>

namespace metafile {

namespace {

constexpr int kSide = 8;
constexpr int kForwardDiagonal = 2;

// Rows from the top, a byte each, the highest byte first; the highest bit is the left pixel.
constexpr std::array<std::uint64_t, 53> kTiles = {
    0xFF00000000000000, // horizontal
    0x8080808080808080, // vertical
    0x8040201008040201, // forward diagonal
    0x0102040810204080, // backward diagonal
    0xFF80808080808080, // large grid
    0x8142241818244281, // diagonal cross
    0x8000000008000000, // 5 percent
    0x8000080080000800, // 10 percent
    0x8800220088002200, // 20 percent
    0x8822882288228822, // 25 percent
    0xAA44AA11AA44AA11, // 30 percent
    0xAA55AA51AA55AA15, // 40 percent
    0xAA55AA55AA55AA55, // 50 percent
    0x77AADDAA77AADDAA, // 60 percent
    0x77DD77DD77DD77DD, // 70 percent
    0x77FFDDFF77FFDDFF, // 75 percent
    0x7FFFF7FF7FFFF7FF, // 80 percent
    0x7FFFFFFFF7FFFFFF, // 90 percent
    0x8844221188442211, // light downward diagonal
    0x1122448811224488, // light upward diagonal
    0xCC663399CC663399, // dark downward diagonal
    0x3366CC993366CC99, // dark upward diagonal
    0xC1E070381C0E0783, // wide downward diagonal
    0x83070E1C3870E0C1, // wide upward diagonal
    0x8888888888888888, // light vertical
    0xFF000000FF000000, // light horizontal
    0xAAAAAAAAAAAAAAAA, // narrow vertical
    0xFF00FF00FF00FF00, // narrow horizontal
    0xCCCCCCCCCCCCCCCC, // dark vertical
    0xFFFF0000FFFF0000, // dark horizontal
    0x0000884422110000, // dashed downward diagonal
    0x0000112244880000, // dashed upward diagonal
    0xF00000000F000000, // dashed horizontal
    0x8080808008080808, // dashed vertical
    0x8008400210012004, // small confetti
    0xB130031BD8C00C8D, // large confetti
    0x8142241881422418, // zigzag
    0x001825C0001825C0, // wave
    0x0102040818244281, // diagonal brick
    0xFF808080FF080808, // horizontal brick
    0x8854224588142251, // weave
    0xAA55AA55F0F0F0F0, // plaid
    0x0010081000800180, // divot
    0xAA00800080008000, // dotted grid
    0x8000220008002200, // dotted diamond
    0x038448300C020101, // shingle
    0xFF66FF99FF66FF99, // trellis
    0x77898F8F7798F8F8, // sphere
    0xFF888888FF888888, // small grid
    0x9966669999666699, // small checker board
    0xF0F0F0F00F0F0F0F, // large checker board
    0x8244281028448201, // outlined diamond
    0x0010387CFE7C3810, // solid diamond
};

} // namespace

QImage plusHatchTile(int style, QRgb lines, QRgb ground) {
    const bool isKnown = style >= 0 && static_cast<std::size_t>(style) < kTiles.size();
    const std::uint64_t bits = kTiles[static_cast<std::size_t>(isKnown ? style : kForwardDiagonal)];
    QImage tile(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < kSide; ++y) {
        auto* row = reinterpret_cast<QRgb*>(tile.scanLine(y));
        for (int x = 0; x < kSide; ++x) {
            const int bit = kSide * kSide - 1 - (y * kSide + x);
            row[x] = qPremultiply((bits >> bit & 1U) != 0 ? lines : ground);
        }
    }
    return tile;
}

} // namespace metafile
