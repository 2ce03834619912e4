// Images are made here, after their size has been checked.
#pragma once

#include "imaging/new_image.h"
#include "imaging/picture_facts.h"

#include <QImage>

#include <cstdint>

namespace imaging {

// Throws unless both sides are at least 1 and the area at most kMaximumPixels.
void requireSensibleSize(std::int64_t width, std::int64_t height);

// An image of that size, cleared to transparent; DecodeError when there is no memory for it.
QImage newImage(QSize size, QImage::Format format);

} // namespace imaging
