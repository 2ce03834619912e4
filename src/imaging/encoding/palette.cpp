#include "imaging/encoding/palette.h"

#include "imaging/encoding/colour_histogram.h"
#include "imaging/encoding/nearest_colour.h"
#include "imaging/encoding/variance_cut.h"

#include <unordered_set>

namespace imaging {

namespace {

// Moves every colour to the mean of the bins that are nearest to it; returns the squared error that
// there was before.
double moveToMeans(std::vector<Colour>& colours, std::span<const ColourBin> bins) {
    std::vector<ColourSums> sums(colours.size());
    NearestColour nearest(colours);
    double error = 0;
    for (const ColourBin& bin : bins) {
        const std::size_t index = nearest.of(bin.mean);
        sums[index].add(bin);
        error += bin.count * squaredDistance(bin.mean, colours[index]);
    }
    for (std::size_t i = 0; i < colours.size(); ++i) {
        if (sums[i].count > 0) {
            colours[i] = sums[i].mean();
        }
    }
    return error;
}

void refine(std::vector<Colour>& colours, std::span<const ColourBin> bins) {
    constexpr int kMostRounds = 24;
    constexpr double kGoodEnough = 0.995; // of the error before
    double before = moveToMeans(colours, bins);
    for (int round = 1; round < kMostRounds; ++round) {
        const double error = moveToMeans(colours, bins);
        if (error > before * kGoodEnough) {
            break;
        }
        before = error;
    }
}

QRgb rounded(Colour colour) {
    const auto part = [](float value) {
        return std::clamp(static_cast<int>(std::lround(value)), 0, 255);
    };
    return qRgb(part(colour.red), part(colour.green), part(colour.blue));
}

} // namespace

std::optional<std::vector<QRgb>> exactColours(const QImage& image, std::size_t most) {
    std::vector<QRgb> colours;
    std::unordered_set<QRgb> known;
    QRgb last = 0; // no opaque pixel: pictures of few colours have long runs
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (isSeenThrough(row[x]) || (row[x] | 0xFF000000U) == last) {
                continue;
            }
            last = row[x] | 0xFF000000U;
            if (!known.insert(last).second) {
                continue;
            }
            if (colours.size() == most) {
                return std::nullopt;
            }
            colours.push_back(last);
        }
    }
    return colours;
}

std::vector<QRgb> bestColours(const QImage& image, std::size_t most) {
    const std::vector<ColourBin> bins = colourHistogram(image);
    std::vector<Colour> colours = cutByVariance(bins, most);
    if (!colours.empty()) {
        refine(colours, bins);
    }
    std::vector<QRgb> result(colours.size());
    std::transform(colours.begin(), colours.end(), result.begin(), rounded);
    return result;
}

} // namespace imaging
