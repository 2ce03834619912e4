// One encoder for each kind of picture; encode() chooses. The images are ARGB32, not null, and of
// at most kMaximumPixels. All throw EncodeError, and std::bad_alloc where there is no memory.
#pragma once

#include "imaging/encoding/encoders.h"

namespace imaging {

enum class Transparency { None, Some, All }; // All: nothing is seen at all

// Of an ARGB32 image.
Transparency transparencyOf(const QImage& image);

// The image on white paper, RGB32.
QImage onWhite(const QImage& image);

std::vector<std::byte> encodeBmp(const QImage& image);
std::vector<std::byte> encodeGif(const QImage& image);
std::vector<std::byte> encodeJpg(const QImage& image);
std::vector<std::byte> encodeEmf(const QImage& image);

// ICO or CUR.
std::vector<std::byte> encodeIcon(const QImage& image, PictureKind kind, const Kept& kept);

} // namespace imaging
