// The few colours that stand for all of a picture's.
#pragma once

#include "imaging/encoding/colour.h"

#include <QImage>

#include <cstddef>
#include <optional>
#include <vector>

namespace imaging {

// The colours of an ARGB32 image in the order of their first pixels, without what is seen through;
// nullopt when there are more than `most`.
std::optional<std::vector<QRgb>> exactColours(const QImage& image, std::size_t most);

// At most `most` colours, from 1 to 256, that keep the squared error over all pixels of an ARGB32
// image small: the colour cube is cut where that takes away most variance, then every colour moves
// to the middle of the pixels that it is nearest to. None when all is seen through.
std::vector<QRgb> bestColours(const QImage& image, std::size_t most);

} // namespace imaging
