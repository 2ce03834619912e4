// What the colour operations do to one pixel: straight 0xAARRGGBB in and out, alpha kept. Nothing
// but plain arithmetic without branches, which compilers turn into vectors of pixels.
#pragma once

#include "imaging/operations/angles.h"
#include "imaging/operations/vector_code.h"

#include <QRgb>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace imaging::operations {

struct Channels {
    int red;
    int green;
    int blue;
};

TXS_INLINE_LOOP inline Channels channelsOf(QRgb pixel) {
    return {static_cast<int>((pixel >> 16) & 255), static_cast<int>((pixel >> 8) & 255),
            static_cast<int>(pixel & 255)};
}

// `channels` are within [0, 255].
TXS_INLINE_LOOP inline QRgb withAlphaOf(QRgb pixel, const Channels& channels) {
    return (pixel & 0xFF000000U) | (static_cast<QRgb>(channels.red) << 16) |
           (static_cast<QRgb>(channels.green) << 8) | static_cast<QRgb>(channels.blue);
}

TXS_INLINE_LOOP inline int largestOf(const Channels& c) {
    return std::max(std::max(c.red, c.green), c.blue);
}

TXS_INLINE_LOOP inline int smallestOf(const Channels& c) {
    return std::min(std::min(c.red, c.green), c.blue);
}

struct InversionKernel {
    TXS_INLINE_LOOP QRgb operator()(QRgb pixel) const { return pixel ^ 0x00FFFFFFU; }
};

// c' = slope * c + offset, with 21 bits behind the point: as exact results are multiples of 1/2000,
// that and a quarter of such a step on top round each of them as it should be, halves up.
class LinearKernel {
  public:
    static LinearKernel contrast(int amount) {
        const double slope = 1 + amount / 1000.0;
        return {slope, 127.5 * (1 - slope)};
    }

    static LinearKernel intensity(int amount) { return {1, 255 * amount / 1000.0}; }

    TXS_INLINE_LOOP QRgb operator()(QRgb pixel) const {
        const Channels c = channelsOf(pixel);
        return withAlphaOf(pixel, {changed(c.red), changed(c.green), changed(c.blue)});
    }

  private:
    static constexpr int kBits = 21;

    LinearKernel(double slope, double offset)
        : slope_(static_cast<int>(slope * (1 << kBits) + 0.5)),
          offset_(static_cast<int>((offset + 0.5 + 1.0 / 4000) * (1 << kBits))) {}

    TXS_INLINE_LOOP int changed(int level) const {
        return std::clamp((level * slope_ + offset_) >> kBits, 0, 255);
    }

    int slope_;
    int offset_;
};

// With the lightness L = (largest + smallest) / 2 kept, all channels move away from L by one
// factor. The saturation is 1 where the chroma, largest - smallest, is 255 - |2 L - 255|.
class SaturationKernel {
  public:
    explicit SaturationKernel(int amount) : factor_(static_cast<float>(1000 + amount) / 1000.0F) {}

    TXS_INLINE_LOOP QRgb operator()(QRgb pixel) const {
        const Channels c = channelsOf(pixel);
        const int largest = largestOf(c);
        const int smallest = smallestOf(c);
        const int sum = largest + smallest;
        const int mostChroma = 255 - std::abs(sum - 255);
        const int chroma = std::max(largest - smallest, 1);
        const float factor =
            std::min(factor_, static_cast<float>(mostChroma) / static_cast<float>(chroma));
        return withAlphaOf(pixel, {moved(c.red, sum, factor), moved(c.green, sum, factor),
                                   moved(c.blue, sum, factor)});
    }

  private:
    TXS_INLINE_LOOP static int moved(int level, int sum, float factor) {
        const float twice = static_cast<float>(sum) + static_cast<float>(2 * level - sum) * factor;
        return static_cast<int>(twice * 0.5F + 0.5F);
    }

    float factor_;
};

// As the largest and the smallest value stay, only the place of each channel on the way between
// them changes. Places count in sixths of a turn, times the chroma (which saves the division by
// it), with 16 bits behind the point: red lies at 0, green at 2 and blue at 4 chromas.
class HueKernel {
  public:
    // `turn`: hundredths of a degree in [0, 36000).
    explicit HueKernel(int turn)
        : shift_(
              static_cast<int>((std::int64_t{turn} * (6 << kBits) + kFullTurn / 2) / kFullTurn)) {}

    TXS_INLINE_LOOP QRgb operator()(QRgb pixel) const {
        const Channels c = channelsOf(pixel);
        const int largest = largestOf(c);
        const int chroma = largest - smallestOf(c);
        const int onBlue = 4 * chroma + c.red - c.green;
        const int onGreen = 2 * chroma + c.blue - c.red;
        const int onRed = c.green - c.blue;
        const int hue = largest == c.red ? onRed : largest == c.green ? onGreen : onBlue;
        const int unit = chroma << kBits;
        const int turned = wrapped((hue << kBits) + chroma * shift_, unit);
        return withAlphaOf(pixel, {largest - fall(turned + 5 * unit, unit),
                                   largest - fall(turned + 3 * unit, unit),
                                   largest - fall(turned + unit, unit)});
    }

  private:
    static constexpr int kBits = 16;

    // Takes a whole turn off, if it is one.
    TXS_INLINE_LOOP static int wrapped(int place, int unit) {
        return place >= 6 * unit ? place - 6 * unit : place;
    }

    // How far a channel lies below the largest value: none for two sixths of the turn, the whole
    // chroma for two, and on the way from one to the other for two.
    TXS_INLINE_LOOP static int fall(int place, int unit) {
        const int within = wrapped(place, unit);
        const int height = std::min(std::max(std::min(within, 4 * unit - within), 0), unit);
        return (height + (1 << (kBits - 1))) >> kBits;
    }

    int shift_;
};

} // namespace imaging::operations
