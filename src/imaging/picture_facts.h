// What is known of a picture before its pixels: kind, size, and what is wrong with it.
#pragma once

#include "base/picture_units.h"

#include <QPoint>
#include <QSize>
#include <QString>

#include <stdexcept>

namespace imaging {

// In the order of base::kTypeCodes.
enum class PictureKind { Wmf, Emf, Ico, Cur, Bmp, Gif, Jpg };

// 15 twips are a pixel; a metafile's size may be a fraction of pixels.
struct TwipSize {
    double height = 0;
    double width = 0;
};

inline constexpr double kTwipsPerPixel = base::kTwipsPerPixel;
inline constexpr qint64 kMaximumPixels = 40'000'000;

// what(): the cause in plain English, without a file name.
class DecodeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct PictureFacts {
    PictureKind kind = PictureKind::Bmp;
    QSize pixels; // a metafile's: its size in pixels, rounded, at least 1 x 1
    TwipSize twips;
    int bitsPerPixel = 0; // of the stored picture; 0 for metafiles
    QPoint hotSpot;       // of a cursor, in pixels from the top left
};

// "WMF", "EMF", ... in upper case.
QString typeCodeOf(PictureKind kind);

} // namespace imaging
