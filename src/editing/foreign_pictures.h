// Pictures of types that the library does not keep, but the toolkit reads: PNG, TIFF, WebP, SVG and
// what else its plug-ins know. They can be taken as BMP, which keeps every pixel and its alpha.
//
// For any number of threads at once.
#pragma once

#include <QSize>
#include <QString>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace editing {

struct ForeignPicture {
    QString type;          // "PNG"
    bool isVector = false; // has no size of its own
    QSize pixels;          // as it stands in the file
};

// Nothing for bytes that the toolkit cannot read, and for more pixels than any picture may have.
std::optional<ForeignPicture> inspectForeign(std::span<const std::byte> bytes);

// The bytes of a BMP file with the picture; one without a size of its own is drawn so that its
// longer side has `longerSide` pixels. Throws an exception whose what() is the cause.
std::vector<std::byte> foreignAsBmp(std::span<const std::byte> bytes, int longerSide);

} // namespace editing
