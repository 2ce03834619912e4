// Shows a picture in few colours: what a pixel's colour is off by is spread over its neighbours.
#pragma once

#include <QImage>

#include <span>

namespace imaging {

// Fills `indexes`, 8 bits a pixel and of the same size, with the numbers of the colours, at least
// one, that stand for the pixels of the ARGB32 image; what is seen through gets colours.size(),
// which is at most 255 then.
void diffuse(const QImage& image, std::span<const QRgb> colours, QImage& indexes);

} // namespace imaging
