// All pictures that an icon or cursor file holds.
#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace picture {

struct IconFrame {
    QSize size;
    int bitsPerPixel = 0;
    std::optional<QPoint> hotSpot; // of a cursor, inside the frame
    bool isShown = false;          // the one that stands for the file everywhere else
    QImage image;                  // null when it cannot be decoded, or there are too many pixels
};

// In the order of the file; those that cannot even be measured are left out. Nothing for bytes that
// are no icon or cursor. Never throws for the bytes' sake. A hostile directory names very many:
// those behind the first 256 are left out.
std::vector<IconFrame> iconFrames(std::span<const std::byte> bytes);

} // namespace picture
