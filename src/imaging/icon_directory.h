// The frames of an icon or cursor file, as the decoder and the encoder see them.
#pragma once

#include "imaging/picture_facts.h"

#include <QImage>

#include <cstddef>
#include <span>
#include <vector>

namespace imaging {

inline constexpr std::size_t kIconDirectoryBytes = 6;
inline constexpr std::size_t kIconEntryBytes = 16;
inline constexpr std::uint16_t kIconType = 1;
inline constexpr std::uint16_t kCursorType = 2;

struct IconFrame {
    std::span<const std::byte> data; // to the end of the file: the stated length is often wrong
    std::size_t entry = 0;           // its number in the file's directory
    QPoint hotSpot;
    QSize size;
    int bitsPerPixel = 0;
    bool isPng = false;

    qint64 area() const { return qint64{size.width()} * size.height(); }
};

struct IconDirectory {
    PictureKind kind = PictureKind::Ico; // or Cur
    std::vector<IconFrame> frames;       // those that can be measured, the best first
};

// DecodeError when no frame can be measured.
IconDirectory readIconDirectory(std::span<const std::byte> bytes);

// ARGB32. DecodeError.
QImage decodeFrame(const IconFrame& frame);

// A cursor's hot spot, moved into the frame where the file tells one beside it.
QPoint hotSpotWithin(const IconFrame& frame);

struct ShownFrame {
    IconFrame frame;
    QImage image; // ARGB32
};

// The best frame that can be decoded; DecodeError when there is none.
ShownFrame decodeShownFrame(const IconDirectory& icon);

// The bytes of a frame's data that its header and its pixels need at least, as far as they are
// there; 0 for a PNG frame, whose length only its directory entry tells.
std::size_t neededBytes(const IconFrame& frame);

} // namespace imaging
