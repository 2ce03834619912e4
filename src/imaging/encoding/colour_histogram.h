// Which colours a picture has, and how many pixels of each.
#pragma once

#include "imaging/encoding/colour.h"

#include <QImage>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace imaging {

// Pixels of nearly the same colour: alike in the six upper bits of every part.
struct ColourBin {
    static constexpr int kBits = 6;
    static constexpr std::size_t kLevels = 1U << kBits;

    Colour mean;
    float count = 0;                      // of pixels
    std::array<std::uint8_t, 3> levels{}; // the upper bits of red, green and blue
};

// Of an ARGB32 image, without what is seen through; no bin is empty.
std::vector<ColourBin> colourHistogram(const QImage& image);

} // namespace imaging
