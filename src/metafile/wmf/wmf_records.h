// The groups of WMF record types, each with a reader of its own. For wmf_reader.cpp alone.
#pragma once

#include "imaging/byte_reader.h"
#include "metafile/records/record_sink.h"

#include <map>

namespace metafile {

// One record; offsets count from its size field on, and nothing behind its end can be read.
struct WmfRecord {
    std::uint16_t type = 0;
    imaging::ByteReader in;

    // A blit without a bitmap is told by its length alone.
    bool hasBitmap() const;
};

// What later records of a file need of earlier ones to be understood.
struct WmfReading {
    RecordSink& sink;
    std::vector<bool> usedHandles;
    std::map<std::size_t, Palette> palettes;
    std::map<std::size_t, std::vector<QRect>> regions;
    std::optional<std::size_t> selectedPalette;

    // A new object gets the lowest number that is free.
    std::size_t takeHandle();
    // Null when no palette is selected.
    const Palette* palette() const;
    // Of a pen, a brush or the device context; maybe an entry of the palette.
    QRgb colourAt(const imaging::ByteReader& in, std::size_t at) const;
};

// Each returns whether the type is one of its own, and throws DecodeError when such a record cannot
// be read.
bool readWmfState(const WmfRecord& record, WmfReading& reading);
bool readWmfObject(const WmfRecord& record, WmfReading& reading);
bool readWmfShape(const WmfRecord& record, WmfReading& reading);
bool readWmfText(const WmfRecord& record, WmfReading& reading);
bool readWmfBitmap(const WmfRecord& record, WmfReading& reading);

// ---- Fields, most of which stand in reverse order

QPointF pointBackwards(const imaging::ByteReader& in, std::size_t at); // y, x
QSizeF sizeBackwards(const imaging::ByteReader& in, std::size_t at);   // height, width
QRectF rectangleBackwards(const imaging::ByteReader& in,
                          std::size_t at); // bottom, right, top, left

} // namespace metafile
