// The groups of EMF record types, each with a reader of its own. For emf_reader.cpp alone.
#pragma once

#include "imaging/byte_reader.h"
#include "metafile/records/record_sink.h"

#include <map>

namespace metafile {

// One record; offsets count from its type field on, and nothing behind its end can be read.
struct EmfRecord {
    std::uint32_t type = 0;
    imaging::ByteReader in;
};

// What later records of a file need of earlier ones to be understood.
struct EmfReading {
    RecordSink& sink;
    std::map<std::uint32_t, Palette> palettes;
    std::optional<std::uint32_t> selectedPalette;

    // Null when no palette is selected.
    const Palette* palette() const;
    // Of a pen, a brush or the device context; maybe an entry of the palette.
    QRgb colourAt(const imaging::ByteReader& in, std::size_t at) const;
};

// Each returns whether the type is one of its own, and throws DecodeError when such a record cannot
// be read.
bool readEmfState(const EmfRecord& record, EmfReading& reading);
bool readEmfObject(const EmfRecord& record, EmfReading& reading);
bool readEmfShape(const EmfRecord& record, EmfReading& reading);
bool readEmfText(const EmfRecord& record, EmfReading& reading);
bool readEmfBitmap(const EmfRecord& record, EmfReading& reading);

// ---- Fields

QPointF pointAt(const imaging::ByteReader& in, std::size_t at);
// Left, top, right, bottom.
QRectF rectangleAt(const imaging::ByteReader& in, std::size_t at);
// DecodeError unless it is a finite number; wild ones are bounded.
double realAt(const imaging::ByteReader& in, std::size_t at);
QTransform transformAt(const imaging::ByteReader& in, std::size_t at);
// The rectangles of region data that begin at `at`.
std::vector<QRect> regionAt(const imaging::ByteReader& in, std::size_t at);
// The bytes that a pair of offset and size at `at` points to, within the record.
std::span<const std::byte> partAt(const imaging::ByteReader& in, std::size_t at);

} // namespace metafile
