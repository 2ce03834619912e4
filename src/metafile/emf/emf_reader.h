// Enhanced metafiles: bytes -> records.
// Source: [MS-EMF].
#pragma once

#include "metafile/records/record_sink.h"

namespace metafile {

// Whether the bytes begin like one.
bool isEmf(std::span<const std::byte> bytes);

// The device that a file was recorded for.
struct EmfLayout {
    QRectF frame;                           // the picture's own rectangle, in device pixels
    QSizeF pixelsPerMillimetre{3.78, 3.78}; // across and down
    bool mirrored = false; // the device's pixels count upwards, the frame's downwards
};

// DecodeError when the header cannot be read.
EmfLayout readEmfLayout(std::span<const std::byte> bytes);

// Hands every record to the sink, in order; one that cannot be read is left out. Throws what the
// sink throws and nothing else.
FileEnd readEmf(std::span<const std::byte> bytes, RecordSink& sink);

// Where records besides comments draw something: nowhere, only behind the first EMF+ record, or
// before it already.
enum class DrawingWithoutPlus { Nowhere, Behind, Before };
DrawingWithoutPlus drawingWithoutPlus(std::span<const std::byte> bytes);

// Hands the sink the comments with EMF+ records alone, without reading anything else.
void readPlusComments(std::span<const std::byte> bytes, RecordSink& sink);

} // namespace metafile
