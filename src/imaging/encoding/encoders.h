// Picture -> bytes, in the kinds that this program writes: all that it reads but WMF.
#pragma once

#include "imaging/picture_facts.h"

#include <QImage>
#include <QPoint>

#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

namespace imaging {

// what(): the cause in plain English, without a file name.
class EncodeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a file takes over from the one that its picture was read from.
struct Kept {
    // That file as it is, while encode() runs. An icon or cursor becomes a new one of the same kind
    // with all its other frames, byte for byte, and the picture in the place of the one that
    // decode() shows. Files of other kinds hold nothing that would be kept.
    std::span<const std::byte> file;

    // Of a cursor, in pixels of the picture; outside of it the nearest pixel counts.
    QPoint hotSpot;
};

// The bytes of a file that holds the picture. decode() gives every pixel back from BMP, ICO and
// CUR, and from GIF where the picture has at most 256 colours (255 beside transparent ones); there
// and in a wholly transparent icon the colour of transparent pixels is lost.
//
//   BMP  24 bits; 32 with alpha where any pixel is not opaque.
//   GIF  one picture; what is less than half opaque is transparent, everything else opaque.
//   JPG  top quality, no chroma subsampling; no EXIF data; see-through parts on white paper. Keeps
//        dots per metre and colour profile of the image.
//   ICO, CUR  32 bits with a mask, or a PNG picture where a side has 256 pixels or more.
//   EMF  the picture at 96 pixels an inch, with its alpha.
//
// EncodeError: the image is null or has more than kMaximumPixels, a side is too long for the kind
// (GIF, ICO, CUR 65535 pixels, JPG 65500, EMF 32767), the kind is WMF, or there is no memory.
std::vector<std::byte> encode(const QImage& image, PictureKind kind, const Kept& kept = {});

} // namespace imaging
