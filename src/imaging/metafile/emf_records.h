// The groups of EMF record types, each with a reader of its own. For emf_reader.cpp alone.
#pragma once

#include "imaging/byte_reader.h"
#include "imaging/metafile/record_sink.h"

#include <map>

namespace imaging::metafile {

// One record; offsets count from its type field on, and nothing behind its end can be read.
struct EmfRecord {
    std::uint32_t type = 0;
    ByteReader in;
};

// What later records of a file need of earlier ones to be understood.
struct EmfReading {
    RecordSink& sink;
    std::map<std::uint32_t, Palette> palettes;
    std::optional<std::uint32_t> selectedPalette;

    // Null when no palette is selected.
    const Palette* palette() const;
};

// Each returns whether the type is one of its own, and throws DecodeError when such a record cannot
// be read.
bool readEmfState(const EmfRecord& record, EmfReading& reading);
bool readEmfObject(const EmfRecord& record, EmfReading& reading);
bool readEmfShape(const EmfRecord& record, EmfReading& reading);
bool readEmfText(const EmfRecord& record, EmfReading& reading);
bool readEmfBitmap(const EmfRecord& record, EmfReading& reading);

// ---- Fields

QPointF pointAt(const ByteReader& in, std::size_t at);
// Left, top, right, bottom.
QRectF rectangleAt(const ByteReader& in, std::size_t at);
QRgb colourAt(const ByteReader& in, std::size_t at);
// DecodeError unless it is a finite number; wild ones are bounded.
double realAt(const ByteReader& in, std::size_t at);
QTransform transformAt(const ByteReader& in, std::size_t at);
// The rectangles of region data that begin at `at`.
std::vector<QRect> regionAt(const ByteReader& in, std::size_t at);
// The bytes that a pair of offset and size at `at` points to, within the record.
std::span<const std::byte> partAt(const ByteReader& in, std::size_t at);

} // namespace imaging::metafile
