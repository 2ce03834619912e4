// Raster pictures: bytes -> pixels, one decoder for each kind. A kind is recognised by the content,
// and sizes are checked before memory is taken.
//
// All throw DecodeError and nothing else for the bytes' sake. They keep nothing between calls: any
// number of threads may decode at once. No QGuiApplication is needed.
#pragma once

#include "imaging/picture_facts.h"

#include <QImage>

#include <cstddef>
#include <optional>
#include <span>

namespace imaging {

struct RasterPicture {
    PictureFacts facts;
    QImage image; // in full size, maybe with alpha
};

// What raster kind the bytes begin like.
std::optional<PictureKind> sniff(std::span<const std::byte> bytes);

// Kind and size from the headers; takes no memory for pixels.
PictureFacts measure(std::span<const std::byte> bytes);

RasterPicture decode(std::span<const std::byte> bytes);

PictureFacts measureBmp(std::span<const std::byte> bytes);
RasterPicture decodeBmp(std::span<const std::byte> bytes);

// ICO and CUR.
PictureFacts measureIcon(std::span<const std::byte> bytes);
RasterPicture decodeIcon(std::span<const std::byte> bytes);

PictureFacts measureGif(std::span<const std::byte> bytes);
RasterPicture decodeGif(std::span<const std::byte> bytes);

PictureFacts measureJpg(std::span<const std::byte> bytes);
RasterPicture decodeJpg(std::span<const std::byte> bytes);

// A JPG or PNG picture inside another file, as ARGB32. `size` has been checked; nullopt when the
// bytes cannot be read or are of another size.
std::optional<QImage> readEmbedded(std::span<const std::byte> bytes, const char* format,
                                   QSize size);

// What Qt's readers may take for one picture, in MiB: 40 million pixels of four bytes and a
// reader's own tables. Qt keeps it for the whole program, so every use of its readers sets it.
inline constexpr int kAllocationLimit = 192;

// The facts of a raster picture: 15 twips a pixel.
PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel);

} // namespace imaging
