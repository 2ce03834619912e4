#include "imaging/encoding/colour_histogram.h"

namespace imaging {

namespace {

constexpr unsigned kLowBits = 8 - ColourBin::kBits;
constexpr unsigned kLowMask = (1U << kLowBits) - 1;
constexpr unsigned kLevelMask = ColourBin::kLevels - 1;

// Only the lower bits are summed up, so that 32 bits do for the largest picture.
struct Sums {
    std::uint32_t count = 0;
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
};

unsigned levelOf(int value) {
    return static_cast<unsigned>(value) >> kLowBits;
}

ColourBin binOf(std::size_t index, const Sums& sums) {
    const auto level = [&](unsigned place) {
        return static_cast<std::uint8_t>(index >> (place * ColourBin::kBits) & kLevelMask);
    };
    ColourBin bin;
    bin.levels = {level(2), level(1), level(0)};
    bin.count = static_cast<float>(sums.count);
    const auto mean = [&](std::uint8_t upper, std::uint32_t sum) {
        return static_cast<float>(upper << kLowBits) +
               static_cast<float>(static_cast<double>(sum) / sums.count);
    };
    bin.mean = {mean(bin.levels[0], sums.red), mean(bin.levels[1], sums.green),
                mean(bin.levels[2], sums.blue)};
    return bin;
}

} // namespace

std::vector<ColourBin> colourHistogram(const QImage& image) {
    std::vector<Sums> sums(ColourBin::kLevels * ColourBin::kLevels * ColourBin::kLevels);
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = row[x];
            if (isSeenThrough(pixel)) {
                continue;
            }
            const std::size_t index = (levelOf(qRed(pixel)) << (2 * ColourBin::kBits)) |
                                      (levelOf(qGreen(pixel)) << ColourBin::kBits) |
                                      levelOf(qBlue(pixel));
            Sums& bin = sums[index];
            ++bin.count;
            bin.red += static_cast<unsigned>(qRed(pixel)) & kLowMask;
            bin.green += static_cast<unsigned>(qGreen(pixel)) & kLowMask;
            bin.blue += static_cast<unsigned>(qBlue(pixel)) & kLowMask;
        }
    }
    std::vector<ColourBin> bins;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (sums[i].count > 0) {
            bins.push_back(binOf(i, sums[i]));
        }
    }
    return bins;
}

} // namespace imaging
