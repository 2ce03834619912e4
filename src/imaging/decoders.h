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
    QImage image; // maybe with alpha
};

// What raster kind the bytes begin like.
std::optional<PictureKind> sniff(std::span<const std::byte> bytes);

// Kind and size from the headers; takes no memory for pixels.
PictureFacts measure(std::span<const std::byte> bytes);

// In full size; with a `box` for showing the picture fitted into that many pixels or less, upright:
// of a JPG only as many pixels are decoded as that takes.
RasterPicture decode(std::span<const std::byte> bytes, QSize box = {});

PictureFacts measureBmp(std::span<const std::byte> bytes);
RasterPicture decodeBmp(std::span<const std::byte> bytes);

// ICO and CUR.
PictureFacts measureIcon(std::span<const std::byte> bytes);
RasterPicture decodeIcon(std::span<const std::byte> bytes);

PictureFacts measureGif(std::span<const std::byte> bytes);
RasterPicture decodeGif(std::span<const std::byte> bytes);

PictureFacts measureJpg(std::span<const std::byte> bytes);
RasterPicture decodeJpg(std::span<const std::byte> bytes, QSize box = {});

// A JPG or PNG picture inside another file, as ARGB32. `size` has been checked; nullopt when the
// bytes cannot be read or are of another size.
std::optional<QImage> readEmbedded(std::span<const std::byte> bytes, const char* format,
                                   QSize size);

// Before any use of Qt's readers: sets what they may take for one picture, which Qt keeps for the
// whole program. 192 MiB: 40 million pixels of four bytes and a reader's own tables.
void limitReaders();

// The facts of a raster picture: 15 twips a pixel.
PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel);

} // namespace imaging
