// WMF records that set the device context's state, clip and objects.
// Source: [MS-WMF] 2.3.4 (object records), 2.3.5 (state records).
#include "metafile/records/bitmap_reader.h"
#include "metafile/records/stock_objects.h"
#include "metafile/wmf/wmf_records.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

enum Type : std::uint16_t {
    SaveDc = 0x001E,
    SetPaletteEntries = 0x0037,
    CreatePalette = 0x00F7,
    SetBkMode = 0x0102,
    SetMapMode_ = 0x0103,
    SetRop2 = 0x0104,
    SetPolyFillMode = 0x0106,
    SetStretchBltMode = 0x0107,
    SetTextCharExtra = 0x0108,
    RestoreDc = 0x0127,
    SelectClipRegion = 0x012C,
    SelectObject_ = 0x012D,
    SetTextAlign = 0x012E,
    DibCreatePatternBrush = 0x0142,
    DeleteObject_ = 0x01F0,
    CreatePatternBrush = 0x01F9,
    SetBkColor = 0x0201,
    SetTextColor = 0x0209,
    SetTextJustification = 0x020A,
    SetWindowOrg = 0x020B,
    SetWindowExt = 0x020C,
    SetViewportOrg = 0x020D,
    SetViewportExt = 0x020E,
    OffsetWindowOrg = 0x020F,
    OffsetViewportOrg = 0x0211,
    OffsetClipRgn = 0x0220,
    SelectPalette = 0x0234,
    CreatePenIndirect = 0x02FA,
    CreateFontIndirect = 0x02FB,
    CreateBrushIndirect = 0x02FC,
    ScaleWindowExt = 0x0410,
    ScaleViewportExt = 0x0412,
    ExcludeClipRect = 0x0415,
    IntersectClipRect = 0x0416,
    CreateRegion = 0x06FF,
};

constexpr std::uint16_t kPaletteColours = 1;

// Down first, across second; each divisor before its factor.
QPointF scaleAt(const imaging::ByteReader& in, std::size_t at) {
    const double divisorDown = in.i16(at);
    const double divisorAcross = in.i16(at + 4);
    if (divisorDown == 0 || divisorAcross == 0) {
        throw imaging::DecodeError("a scale in the metafile divides by zero");
    }
    return {in.i16(at + 6) / divisorAcross, in.i16(at + 2) / divisorDown};
}

bool readMode(const WmfRecord& record, RecordSink& sink) {
    const unsigned value = record.in.has(6, 2) ? record.in.u16(6) : 0U;
    switch (record.type) {
    case SetBkMode:
        sink.take(SetBackgroundOpaque{value != 1});
        return true;
    case SetMapMode_:
        // Device pixels are no measure in a file that knows no device: the window tells.
        if (value > 1 && value <= 8) {
            sink.take(SetMapMode{static_cast<MapMode>(value)});
        }
        return true;
    case SetRop2:
        if (value >= 1 && value <= 16) {
            sink.take(SetRasterOperation{static_cast<int>(value)});
        }
        return true;
    case SetPolyFillMode:
        sink.take(SetFillMode{value == 2 ? FillMode::Winding : FillMode::Alternate});
        return true;
    case SetStretchBltMode:
        sink.take(SetSmoothStretching{value == 4});
        return true;
    case SetTextCharExtra:
        sink.take(SetCharacterExtra{double{1} * record.in.i16(6)});
        return true;
    case SetTextAlign:
        sink.take(SetTextAlignment{value});
        return true;
    default:
        return false;
    }
}

bool readMapping(const WmfRecord& record, RecordSink& sink) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case SetWindowOrg:
        sink.take(SetMapping{MappingPart::WindowOrigin, pointBackwards(in, 6)});
        return true;
    case SetWindowExt:
        sink.take(SetMapping{MappingPart::WindowExtent, pointBackwards(in, 6)});
        return true;
    case OffsetWindowOrg:
        sink.take(MoveMapping{MappingPart::WindowOrigin, pointBackwards(in, 6)});
        return true;
    case ScaleWindowExt:
        sink.take(ScaleMapping{MappingPart::WindowExtent, scaleAt(in, 6)});
        return true;
    case ScaleViewportExt:
        sink.take(ScaleMapping{MappingPart::ViewportExtent, scaleAt(in, 6)});
        return true;
    case SetViewportOrg:
    case SetViewportExt:
    case OffsetViewportOrg:
        // In pixels of the device that the file was played on then; it goes on the whole sheet now.
        return true;
    default:
        return false;
    }
}

Pen readPen(const WmfRecord& record, const WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    Pen pen;
    const std::uint32_t style = in.u16(6);
    pen.style = penStyleOf(style);
    pen.cap = penCapOf(style);
    pen.join = penJoinOf(style);
    pen.width = std::abs(double{1} * in.i16(8));
    // A width of 1 counts as "as thin as the device can".
    if (pen.width <= 1) {
        pen.widthKind = PenWidth::Cosmetic;
    }
    // The height's word is there in good files; some leave the colour's end out.
    pen.brush.colour = reading.colourAt(in, 12);
    return pen;
}

Font readFont(const imaging::ByteReader& in) {
    constexpr std::size_t kFaceAt = 24;
    constexpr std::size_t kFaceBytes = 32;
    Font font;
    font.height = in.i16(6);
    font.width = in.i16(8);
    font.escapement = in.i16(10) % 3600;
    font.weight = in.i16(14);
    font.italic = in.u8(16) != 0;
    font.underline = in.u8(17) != 0;
    font.strikeOut = in.u8(18) != 0;
    font.characterSet = in.u8(19);
    font.pitchAndFamily = in.u8(23);
    QByteArray face;
    for (std::size_t i = 0; i < kFaceBytes && in.has(kFaceAt + i, 1); ++i) {
        const std::uint8_t letter = in.u8(kFaceAt + i);
        if (letter == 0) {
            break;
        }
        face.append(static_cast<char>(letter));
    }
    font.family = QString::fromLatin1(face);
    return font;
}

Brush readBitmapBrush(const WmfRecord& record, const WmfReading& reading) {
    constexpr std::uint16_t kDeviceBitmap = 3;
    constexpr std::size_t kOldHeader = 32;
    const imaging::ByteReader& in = record.in;
    Brush brush;
    brush.kind = BrushKind::Pattern;
    if (record.type == CreatePatternBrush || in.u16(6) == kDeviceBitmap) {
        const std::size_t at = record.type == CreatePatternBrush ? 6 : 10;
        if (record.type != CreatePatternBrush && in.has(at, 4) && in.u32(at) == 40) {
            // In spite of what it says a device-independent one.
            brush.pattern = readPackedBitmap(in.rest(at), nullptr);
            return brush;
        }
        Bitmap bitmap = readOldBitmap(in.rest(at), in.rest(at + kOldHeader));
        brush.pattern = bitmap.image;
        brush.monochrome = bitmap.monochrome;
        return brush;
    }
    const bool byPalette = in.u16(8) == kPaletteColours;
    brush.pattern = readPackedBitmap(in.rest(10), byPalette ? reading.palette() : nullptr);
    return brush;
}

std::vector<QRect> readRegion(const imaging::ByteReader& in) {
    constexpr std::size_t kScansAt = 28;
    std::vector<QRect> rectangles;
    std::size_t at = kScansAt;
    for (std::uint16_t scan = in.u16(16); scan > 0 && in.has(at, 6); --scan) {
        const std::size_t edges = in.u16(at);
        const int top = in.i16(at + 2);
        const int bottom = in.i16(at + 4);
        for (std::size_t i = 0; i + 1 < edges && in.has(at + 6 + 2 * i, 4); i += 2) {
            rectangles.emplace_back(QPoint(in.i16(at + 6 + 2 * i), top),
                                    QPoint(in.i16(at + 8 + 2 * i) - 1, bottom - 1));
        }
        at += 8 + 2 * edges;
    }
    return rectangles;
}

Palette readPalette(const imaging::ByteReader& in) {
    Palette palette;
    const std::size_t count = in.u16(8);
    for (std::size_t i = 0; i < count && in.has(10 + 4 * i, 4); ++i) {
        palette.colours.push_back(qRgb(in.u8(10 + 4 * i), in.u8(11 + 4 * i), in.u8(12 + 4 * i)));
    }
    return palette;
}

Object readObject(const WmfRecord& record, const WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case CreatePenIndirect:
        return readPen(record, reading);
    case CreateFontIndirect:
        return readFont(in);
    case CreateBrushIndirect:
        return plainBrush(in.u16(6), reading.colourAt(in, 8), in.has(12, 2) ? in.u16(12) : 0U);
    default:
        return readBitmapBrush(record, reading);
    }
}

// An object takes its number even when it cannot be read: those after it count on that.
void create(const WmfRecord& record, WmfReading& reading) {
    const std::size_t handle = reading.takeHandle();
    Object object;
    try {
        if (record.type == CreatePalette) {
            reading.palettes[handle] = readPalette(record.in);
        } else if (record.type == CreateRegion) {
            reading.regions[handle] = readRegion(record.in);
        } else {
            object = readObject(record, reading);
        }
    } catch (const imaging::DecodeError&) {
        object = std::monostate();
    }
    reading.sink.take(CreateObject{handle, std::move(object)});
}

} // namespace

bool readWmfState(const WmfRecord& record, WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    RecordSink& sink = reading.sink;
    if (readMode(record, sink) || readMapping(record, sink)) {
        return true;
    }
    switch (record.type) {
    case SaveDc:
        sink.take(SaveState{});
        return true;
    case RestoreDc:
        sink.take(RestoreState{in.has(6, 2) ? in.i16(6) : -1});
        return true;
    case SetBkColor:
        sink.take(SetBackgroundColour{reading.colourAt(in, 6)});
        return true;
    case SetTextColor:
        sink.take(SetTextColour{reading.colourAt(in, 6)});
        return true;
    case SetTextJustification:
        sink.take(SetJustification{double{1} * in.i16(8), in.i16(6)});
        return true;
    case OffsetClipRgn:
        sink.take(MoveClip{pointBackwards(in, 6)});
        return true;
    case ExcludeClipRect:
        sink.take(ClipRectangle{ClipMode::Difference, rectangleBackwards(in, 6)});
        return true;
    case IntersectClipRect:
        sink.take(ClipRectangle{ClipMode::And, rectangleBackwards(in, 6)});
        return true;
    default:
        return false;
    }
}

bool readWmfObject(const WmfRecord& record, WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case CreatePenIndirect:
    case CreateFontIndirect:
    case CreateBrushIndirect:
    case CreateRegion:
    case CreatePalette:
    case DibCreatePatternBrush:
    case CreatePatternBrush:
        create(record, reading);
        return true;
    case SelectObject_:
        reading.sink.take(SelectObject{in.u16(6)});
        return true;
    case DeleteObject_:
        if (in.u16(6) < reading.usedHandles.size()) {
            reading.usedHandles[in.u16(6)] = false;
        }
        reading.sink.take(DeleteObject{in.u16(6)});
        return true;
    case SelectPalette:
        reading.selectedPalette = in.u16(6);
        return true;
    case SelectClipRegion:
        // A region's units are those of a device that nothing in the file tells of.
        reading.sink.take(ResetClip{});
        return true;
    default:
        return false;
    }
}

} // namespace metafile
