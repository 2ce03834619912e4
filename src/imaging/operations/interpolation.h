// The colour between four pixels, for loops in vector code.
#pragma once

#include "imaging/operations/vector_code.h"

#include <QRgb>

#include <cstdint>

namespace imaging::operations {

// Four neighbours, straight 0xAARRGGBB.
struct Neighbours {
    QRgb topLeft;
    QRgb topRight;
    QRgb bottomLeft;
    QRgb bottomRight;
};

// How far on the way to the right and the bottom pixels, in 1/256.
struct Fractions {
    std::uint32_t x;
    std::uint32_t y;
};

// One channel of two pixels above and two below, already mixed from left to right, in 1/256.
TXS_INLINE_LOOP inline std::uint32_t mixedDown(std::uint32_t top, std::uint32_t bottom,
                                               std::uint32_t y) {
    return (top * (256 - y) + bottom * y + (1U << 15)) >> 16;
}

// Two channels at once, in the halves of each number; they stay apart, as 255 * 256 < 2^16.
TXS_INLINE_LOOP inline std::uint32_t mixedAcross(std::uint32_t left, std::uint32_t right,
                                                 std::uint32_t x) {
    return (left & 0x00FF00FFU) * (256 - x) + (right & 0x00FF00FFU) * x;
}

// All four are opaque.
TXS_INLINE_LOOP inline QRgb mixedOpaque(const Neighbours& n, const Fractions& at) {
    const std::uint32_t top = mixedAcross(n.topLeft, n.topRight, at.x);
    const std::uint32_t bottom = mixedAcross(n.bottomLeft, n.bottomRight, at.x);
    const std::uint32_t topGreen = mixedAcross(n.topLeft >> 8, n.topRight >> 8, at.x);
    const std::uint32_t bottomGreen = mixedAcross(n.bottomLeft >> 8, n.bottomRight >> 8, at.x);
    const std::uint32_t red = mixedDown(top >> 16, bottom >> 16, at.y);
    const std::uint32_t green = mixedDown(topGreen & 0xFFFFU, bottomGreen & 0xFFFFU, at.y);
    const std::uint32_t blue = mixedDown(top & 0xFFFFU, bottom & 0xFFFFU, at.y);
    return 0xFF000000U | (red << 16) | (green << 8) | blue;
}

// A pixel's share in the mixture: its weight times its alpha, and its colours that much.
struct Share {
    float alpha;
    float red;
    float green;
    float blue;
};

TXS_INLINE_LOOP inline Share shareOf(QRgb pixel, std::uint32_t weight) {
    const float share = static_cast<float>(static_cast<int>(weight * (pixel >> 24)));
    return {share, share * static_cast<float>(static_cast<int>((pixel >> 16) & 255)),
            share * static_cast<float>(static_cast<int>((pixel >> 8) & 255)),
            share * static_cast<float>(static_cast<int>(pixel & 255))};
}

TXS_INLINE_LOOP inline Share sumOf(const Share& one, const Share& other) {
    return {one.alpha + other.alpha, one.red + other.red, one.green + other.green,
            one.blue + other.blue};
}

TXS_INLINE_LOOP inline std::uint32_t rounded(float level) {
    return static_cast<std::uint32_t>(static_cast<int>(level + 0.5F));
}

TXS_INLINE_LOOP inline QRgb mixedWithAlpha(const Neighbours& n, const Fractions& at) {
    const Share top = sumOf(shareOf(n.topLeft, (256 - at.x) * (256 - at.y)),
                            shareOf(n.topRight, at.x * (256 - at.y)));
    const Share bottom =
        sumOf(shareOf(n.bottomLeft, (256 - at.x) * at.y), shareOf(n.bottomRight, at.x * at.y));
    const Share sum = sumOf(top, bottom);
    // Shares are whole numbers: next to one of them that little is nothing, and 0 stays 0.
    const float part = 1.0F / (sum.alpha + 1e-6F);
    return (rounded(sum.alpha * (1.0F / 65536)) << 24) | (rounded(sum.red * part) << 16) |
           (rounded(sum.green * part) << 8) | rounded(sum.blue * part);
}

template <bool opaque>
TXS_INLINE_LOOP inline QRgb mixed(const Neighbours& neighbours, const Fractions& at) {
    if constexpr (opaque) {
        return mixedOpaque(neighbours, at);
    } else {
        return mixedWithAlpha(neighbours, at);
    }
}

} // namespace imaging::operations
