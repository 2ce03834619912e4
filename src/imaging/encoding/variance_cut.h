// Cuts a cloud of colours into boxes, each time where it takes away most variance.
// Source: X. Wu, "Color Quantization by Dynamic Programming and Principal Analysis" (1992) and
// "Efficient Statistical Computations for Optimal Color Quantization" (1991).
#pragma once

#include "imaging/encoding/colour_histogram.h"

#include <span>
#include <vector>

namespace imaging {

// Pixels counted and added up; in double precision, for forty million of them.
struct ColourSums {
    double count = 0;
    double red = 0;
    double green = 0;
    double blue = 0;

    void add(const ColourBin& bin) {
        count += bin.count;
        red += double{bin.count} * bin.mean.red;
        green += double{bin.count} * bin.mean.green;
        blue += double{bin.count} * bin.mean.blue;
    }
    void add(const ColourSums& other) {
        count += other.count;
        red += other.red;
        green += other.green;
        blue += other.blue;
    }

    // Of at least one pixel.
    Colour mean() const {
        return {static_cast<float>(red / count), static_cast<float>(green / count),
                static_cast<float>(blue / count)};
    }

    // What the squares' sum is less by when all pixels take their mean; 0 without pixels.
    double squareOfMean() const {
        return count > 0 ? (red * red + green * green + blue * blue) / count : 0;
    }
};

// The means of the boxes, `most` or as many as there are bins.
std::vector<Colour> cutByVariance(std::vector<ColourBin> bins, std::size_t most);

} // namespace imaging
