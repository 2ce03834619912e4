// One decoder for each kind of picture; picture.cpp chooses by content. All throw DecodeError.
#pragma once

#include "imaging/picture.h"

namespace imaging {

PictureFacts measureBmp(std::span<const std::byte> bytes);
Picture decodeBmp(std::span<const std::byte> bytes);

// ICO and CUR.
PictureFacts measureIcon(std::span<const std::byte> bytes);
Picture decodeIcon(std::span<const std::byte> bytes);

PictureFacts measureGif(std::span<const std::byte> bytes);
Picture decodeGif(std::span<const std::byte> bytes);

PictureFacts measureJpg(std::span<const std::byte> bytes);
Picture decodeJpg(std::span<const std::byte> bytes);

// WMF and EMF: recognised and measured from their headers.
PictureFacts measureWmf(std::span<const std::byte> bytes);
PictureFacts measureEmf(std::span<const std::byte> bytes);
bool isWmf(std::span<const std::byte> bytes);
bool isEmf(std::span<const std::byte> bytes);

// The facts of a raster picture: 15 twips a pixel.
PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel);

} // namespace imaging
