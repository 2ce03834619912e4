// Windows metafiles, placeable or plain: bytes -> records.
// Source: [MS-WMF].
#pragma once

#include "metafile/records/record_sink.h"

namespace metafile {

// Whether the bytes begin like one.
bool isWmf(std::span<const std::byte> bytes);

// What part of its own coordinates a file shows.
struct WmfLayout {
    QRectF window; // logical units; sides may be negative where an axis is mirrored
    // Of a placeable file its header's; of a plain one 0: nothing tells how large a unit is.
    double unitsPerInch = 0;
};

// A placeable file's box; a plain one's first window, or without any what its records draw on.
// DecodeError when the header cannot be read.
WmfLayout readWmfLayout(std::span<const std::byte> bytes);

// Hands every record to the sink, in order; one that cannot be read is left out. Throws what the
// sink throws and nothing else.
FileEnd readWmf(std::span<const std::byte> bytes, RecordSink& sink);

// Files that were made of an enhanced metafile may hold that one whole, in comments, for whoever
// can draw it. Empty when there is none or a part of it is missing.
std::vector<std::byte> readEmbeddedEmf(std::span<const std::byte> bytes);

} // namespace metafile
