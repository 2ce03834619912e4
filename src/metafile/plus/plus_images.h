// The pictures inside EMF+ objects.
// Source: [MS-EMFPLUS] 2.2.1.4 (image), 2.2.2.2 (bitmap), 2.1.1.25 (pixel formats).
#pragma once

#include "metafile/plus/plus_records.h"

#include <span>

namespace metafile {

// An image object's data: a bitmap, decoded, or a metafile's bytes. DecodeError when it cannot be
// read or is too large.
PlusImage readPlusImage(std::span<const std::byte> data);

// Whether the object's picture may have pixels that are not opaque; looks at its header alone.
bool plusImageHasAlpha(std::span<const std::byte> data);

} // namespace metafile
