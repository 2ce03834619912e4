// Pictures that a command reads from files.
#pragma once

#include "base/bytes.h"
#include "picture/picture.h"
#include "tool/command.h"

#include <filesystem>
#include <vector>

namespace tool {

struct InputPicture {
    base::Bytes file;
    picture::PictureFacts facts; // of the file
    QImage image;                // the whole picture, in the size that the options ask for
};

// Reads a picture file of any of the seven types, fitted into --width and --height with its
// proportions kept: raster pictures are never enlarged, metafiles are drawn at that size, on white.
// A metafile that is cut short or asks for too much is drawn as far as it goes, with a warning.
//
// UsageError for wrong numbers, told before the file is read. compound::Error for `source` when it
// cannot be read or decoded, TooLarge for `target` when it would have too many pixels.
InputPicture readPicture(const std::filesystem::path& source, const std::filesystem::path& target,
                         const Invocation& invocation);

// The same with the bytes of a picture that was read from `source` already.
InputPicture readPicture(base::Bytes bytes, const std::filesystem::path& source,
                         const std::filesystem::path& target, const Invocation& invocation);

// The image as the bytes of a PNG file, to be written to `target`: compound::Error for that.
std::vector<std::byte> toPng(const QImage& image, const std::filesystem::path& target);

} // namespace tool
