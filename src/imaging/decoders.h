// One decoder for each kind of picture; picture.cpp chooses by content. All throw DecodeError.
#pragma once

#include "imaging/picture.h"

#include <optional>
#include <span>

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

// A JPG or PNG picture inside another file, as ARGB32, through Qt's reader. `size` has been
// checked; nullopt when the bytes cannot be read or are of another size.
std::optional<QImage> readEmbedded(std::span<const std::byte> bytes, const char* format,
                                   QSize size);

// What Qt's readers may take for one picture, in MiB: 40 million pixels of four bytes and a
// reader's own tables. Qt keeps it for the whole program, so every use of its readers sets it.
inline constexpr int kAllocationLimit = 192;

// The facts of a raster picture: 15 twips a pixel.
PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel);

} // namespace imaging
