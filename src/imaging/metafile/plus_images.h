// The pictures inside EMF+ objects.
// Source: [MS-EMFPLUS] 2.2.1.4 (image), 2.2.2.2 (bitmap), 2.1.1.25 (pixel formats).
#pragma once

#include "imaging/metafile/plus_records.h"

#include <span>

namespace imaging::metafile {

// An image object's data: a bitmap, decoded, or a metafile's bytes. DecodeError when it cannot be
// read or is too large.
PlusImage readPlusImage(std::span<const std::byte> data);

// The rectangle that a metafile's bytes say they show, in the pixels or units that records count
// its parts in; null when they do not say.
QRectF plusMetafileFrame(std::span<const std::byte> metafile);

// Whether the object's picture may have pixels that are not opaque; looks at its header alone.
bool plusImageHasAlpha(std::span<const std::byte> data);

} // namespace imaging::metafile
