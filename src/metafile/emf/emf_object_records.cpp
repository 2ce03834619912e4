// EMF records that make, select and delete pens, brushes, fonts and palettes.
// Source: [MS-EMF] 2.3.7 (object creation) and 2.3.8 (object manipulation).
#include "metafile/emf/emf_records.h"
#include "metafile/records/bitmap_reader.h"
#include "metafile/records/stock_objects.h"

#include <algorithm>

namespace metafile {

namespace {

enum Type : std::uint32_t {
    SelectObject_ = 37,
    CreatePen = 38,
    CreateBrushIndirect = 39,
    DeleteObject_ = 40,
    SelectPalette = 48,
    CreatePalette = 49,
    SetPaletteEntries = 50,
    ExtCreateFontIndirectW = 82,
    CreateMonoBrush = 93,
    CreateDibPatternBrushPt = 94,
    ExtCreatePen = 95,
};

constexpr std::uint32_t kStock = 0x80000000;
constexpr std::uint32_t kPaletteColours = 1; // usage of a bitmap's colours

Pen readPen(const EmfRecord& record, const EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    Pen pen;
    pen.style = penStyleOf(in.u32(12));
    pen.width = std::abs(double{1} * in.i32(16));
    // A width of 1 counts as "as thin as the device can".
    if (pen.width <= 1) {
        pen.widthKind = PenWidth::Cosmetic;
    }
    pen.brush.colour = reading.colourAt(in, 24);
    return pen;
}

Brush readPatternBrush(const imaging::ByteReader& in, std::size_t at, bool monochrome,
                       const EmfReading& reading) {
    Brush brush;
    brush.kind = BrushKind::Pattern;
    brush.monochrome = monochrome;
    const auto header = partAt(in, at + 4);
    const auto pixels = partAt(in, at + 12);
    const bool byPalette = in.u32(at) == kPaletteColours;
    brush.pattern =
        readBitmap({header, pixels, byPalette ? reading.palette() : nullptr, AlphaUse::Ignored});
    return brush;
}

std::vector<double> readDashes(const imaging::ByteReader& in, std::size_t at) {
    constexpr std::uint32_t kMost = 16; // as in the format
    std::vector<double> dashes;
    const std::uint32_t count = std::min(in.u32(at), kMost);
    for (std::uint32_t i = 0; i < count; ++i) {
        dashes.push_back(in.u32(at + 4 + std::size_t{4} * i));
    }
    return dashes;
}

Pen readExtendedPen(const EmfRecord& record, const EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    constexpr std::uint32_t kGeometric = 0x10000;
    constexpr std::uint32_t kPattern = 3;
    constexpr std::uint32_t kDibPattern = 5;
    constexpr std::uint32_t kDibPatternPointer = 6;
    const std::uint32_t style = in.u32(28);
    Pen pen;
    pen.style = penStyleOf(style);
    pen.cap = penCapOf(style);
    pen.join = penJoinOf(style);
    pen.widthKind = (style & kGeometric) != 0 ? PenWidth::Geometric : PenWidth::Cosmetic;
    pen.width = in.u32(32);
    const std::uint32_t brushStyle = in.u32(36);
    pen.brush = plainBrush(brushStyle, reading.colourAt(in, 40), in.u32(44));
    if (brushStyle == kPattern || brushStyle == kDibPattern || brushStyle == kDibPatternPointer) {
        pen.brush.kind = BrushKind::Pattern;
        pen.brush.pattern =
            readBitmap({partAt(in, 12), partAt(in, 20), nullptr, AlphaUse::Ignored});
    }
    if (pen.style == PenStyle::UserDashes) {
        pen.dashes = readDashes(in, 48);
    }
    return pen;
}

Font readFont(const imaging::ByteReader& in) {
    constexpr std::size_t kFaceAt = 40;
    constexpr std::size_t kFaceUnits = 32;
    constexpr double kMost = 1e6;
    Font font;
    font.height = std::clamp(double{1} * in.i32(12), -kMost, kMost);
    font.width = std::clamp(double{1} * in.i32(16), -kMost, kMost);
    font.escapement = in.i32(20) % 3600;
    font.weight = in.i32(28);
    font.italic = in.u8(32) != 0;
    font.underline = in.u8(33) != 0;
    font.strikeOut = in.u8(34) != 0;
    font.characterSet = in.u8(35);
    font.pitchAndFamily = in.u8(39);
    for (std::size_t i = 0; i < kFaceUnits && in.has(kFaceAt + 2 * i, 2); ++i) {
        const std::uint16_t unit = in.u16(kFaceAt + 2 * i);
        if (unit == 0) {
            break;
        }
        font.family.append(QChar(unit));
    }
    return font;
}

void readColours(const imaging::ByteReader& in, std::size_t at, std::size_t count,
                 std::vector<QRgb>& colours, std::size_t first) {
    constexpr std::size_t kMost = 65536;
    for (std::size_t i = 0; i < count && first + i < kMost && in.has(at + 4 * i, 4); ++i) {
        if (colours.size() <= first + i) {
            colours.resize(first + i + 1);
        }
        colours[first + i] = qRgb(in.u8(at + 4 * i), in.u8(at + 4 * i + 1), in.u8(at + 4 * i + 2));
    }
}

void readPalette(const EmfRecord& record, EmfReading& reading) {
    constexpr std::size_t kMostPalettes = 256;
    const imaging::ByteReader& in = record.in;
    const std::uint32_t handle = in.u32(8);
    if (record.type == CreatePalette) {
        if (reading.palettes.size() >= kMostPalettes) {
            return;
        }
        Palette palette;
        readColours(in, 16, in.u16(14), palette.colours, 0);
        reading.palettes[handle] = palette;
        return;
    }
    const auto found = reading.palettes.find(handle);
    if (found != reading.palettes.end()) {
        readColours(in, 20, in.u32(16), found->second.colours, in.u32(12));
    }
}

void select(std::uint32_t handle, RecordSink& sink) {
    if ((handle & kStock) != 0) {
        sink.take(SelectStockObject{stockObject(handle & ~kStock)});
    } else {
        sink.take(SelectObject{handle});
    }
}

} // namespace

bool readEmfObject(const EmfRecord& record, EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    const auto create = [&](Object object) {
        reading.sink.take(CreateObject{in.u32(8), std::move(object)});
    };
    switch (record.type) {
    case SelectObject_:
        select(in.u32(8), reading.sink);
        return true;
    case DeleteObject_:
        reading.sink.take(DeleteObject{in.u32(8)});
        return true;
    case CreatePen:
        create(readPen(record, reading));
        return true;
    case CreateBrushIndirect:
        create(plainBrush(in.u32(12), reading.colourAt(in, 16), in.u32(20)));
        return true;
    case ExtCreateFontIndirectW:
        create(readFont(in));
        return true;
    case CreateMonoBrush:
        create(readPatternBrush(in, 12, true, reading));
        return true;
    case CreateDibPatternBrushPt:
        create(readPatternBrush(in, 12, false, reading));
        return true;
    case ExtCreatePen:
        create(readExtendedPen(record, reading));
        return true;
    case SelectPalette:
        reading.selectedPalette = in.u32(8);
        return true;
    case CreatePalette:
    case SetPaletteEntries:
        readPalette(record, reading);
        return true;
    default:
        return false;
    }
}

} // namespace metafile
