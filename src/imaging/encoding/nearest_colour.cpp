#include "imaging/encoding/nearest_colour.h"

#include <limits>

namespace imaging {

namespace {

struct Distances {
    float least = 0;
    float most = 0;
};

// Squared distances, in one part of the colour, between a value and the points of an interval.
Distances distancesTo(float value, float low, float high) {
    const float outside = std::max({low - value, value - high, 0.0F});
    const float farther = std::max(std::abs(value - low), std::abs(value - high));
    return {outside * outside, farther * farther};
}

Distances distancesTo(Colour colour, Colour low, Colour high) {
    const Distances red = distancesTo(colour.red, low.red, high.red);
    const Distances green = distancesTo(colour.green, low.green, high.green);
    const Distances blue = distancesTo(colour.blue, low.blue, high.blue);
    return {red.least + green.least + blue.least, red.most + green.most + blue.most};
}

} // namespace

NearestColour::NearestColour(std::span<const Colour> colours)
    : colours_(colours.begin(), colours.end()), cells_(kCells) {}

std::size_t NearestColour::of(Colour colour) {
    constexpr unsigned kShift = 8 - kCellBits;
    const auto part = [](float value) { return static_cast<std::size_t>(value) >> kShift; };
    const std::size_t index =
        (part(colour.red) << kCellBits | part(colour.green)) << kCellBits | part(colour.blue);
    Cell& cell = cells_[index];
    if (cell.count == 0) {
        fill(cell, index);
    }
    const std::uint8_t* const candidates = candidates_.data() + cell.first;
    std::size_t best = candidates[0];
    float least = squaredDistance(colours_[best], colour);
    for (std::uint32_t i = 1; i < cell.count; ++i) {
        const float distance = squaredDistance(colours_[candidates[i]], colour);
        if (distance < least) {
            least = distance;
            best = candidates[i];
        }
    }
    return best;
}

void NearestColour::fill(Cell& cell, std::size_t index) {
    constexpr std::size_t kMask = (1U << kCellBits) - 1;
    constexpr float kSide = 1U << (8 - kCellBits);
    const Colour low =
        Colour{static_cast<float>(index >> (2 * kCellBits)),
               static_cast<float>(index >> kCellBits & kMask), static_cast<float>(index & kMask)} *
        kSide;
    const Colour high = low + Colour{kSide, kSide, kSide};
    std::array<float, 256> least{};
    float limit = std::numeric_limits<float>::max();
    for (std::size_t i = 0; i < colours_.size(); ++i) {
        const Distances distances = distancesTo(colours_[i], low, high);
        least[i] = distances.least;
        limit = std::min(limit, distances.most);
    }
    cell.first = static_cast<std::uint32_t>(candidates_.size());
    for (std::size_t i = 0; i < colours_.size(); ++i) {
        if (least[i] <= limit) {
            candidates_.push_back(static_cast<std::uint8_t>(i));
        }
    }
    cell.count = static_cast<std::uint32_t>(candidates_.size()) - cell.first;
}

} // namespace imaging
