// WMF records that draw shapes and text.
// Source: [MS-WMF] 2.3.3 (drawing records).
#include "metafile/wmf/wmf_records.h"

#include <algorithm>

namespace metafile {

namespace {

enum Type : std::uint16_t {
    InvertRegion = 0x012A,
    PaintRegion = 0x012B,
    LineTo_ = 0x0213,
    MoveTo_ = 0x0214,
    FillRegion = 0x0228,
    Polygon = 0x0324,
    Polyline = 0x0325,
    Ellipse = 0x0418,
    FloodFill_ = 0x0419,
    Rectangle = 0x041B,
    SetPixel_ = 0x041F,
    FrameRegion = 0x0429,
    TextOut = 0x0521,
    PolyPolygon = 0x0538,
    ExtFloodFill = 0x0548,
    RoundRect = 0x061C,
    Arc = 0x0817,
    Pie = 0x081A,
    Chord = 0x0830,
    ExtTextOut = 0x0A32,
};

std::vector<QPointF> pointsAt(const imaging::ByteReader& in, std::size_t at, std::size_t count) {
    constexpr std::size_t kPoint = 4;
    std::vector<QPointF> points;
    count = std::min(count, in.rest(at).size() / kPoint);
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        points.emplace_back(in.i16(at + kPoint * i), in.i16(at + kPoint * i + 2));
    }
    return points;
}

Poly readPolyPolygon(const imaging::ByteReader& in) {
    const std::size_t parts = in.u16(6);
    in.part(8, 2 * parts);
    Poly poly;
    poly.kind = PolyKind::Polygon;
    std::size_t sum = 0;
    for (std::size_t i = 0; i < parts; ++i) {
        sum += in.u16(8 + 2 * i);
    }
    poly.points = pointsAt(in, 8 + 2 * parts, sum);
    std::size_t left = poly.points.size();
    for (std::size_t i = 0; i < parts && left > 0; ++i) {
        poly.counts.push_back(std::min<std::size_t>(in.u16(8 + 2 * i), left));
        left -= poly.counts.back();
    }
    return poly;
}

Box readBox(const WmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case Rectangle:
        return {BoxKind::Rectangle, rectangleBackwards(in, 6), {}, {}, {}};
    case Ellipse:
        return {BoxKind::Ellipse, rectangleBackwards(in, 6), {}, {}, {}};
    case RoundRect:
        return {BoxKind::RoundRectangle, rectangleBackwards(in, 10), sizeBackwards(in, 6), {}, {}};
    default:
        break;
    }
    const BoxKind kind = record.type == Arc   ? BoxKind::Arc
                         : record.type == Pie ? BoxKind::Pie
                                              : BoxKind::Chord;
    return {kind, rectangleBackwards(in, 14), {}, pointBackwards(in, 10), pointBackwards(in, 6)};
}

QByteArray bytesAt(const imaging::ByteReader& in, std::size_t at, std::size_t count) {
    const auto rest = in.rest(at);
    const auto bytes = rest.first(std::min(count, rest.size()));
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

Text readTextOut(const imaging::ByteReader& in) {
    const std::size_t count = in.u16(6);
    Text text;
    text.characters = bytesAt(in, 8, count);
    text.reference = pointBackwards(in, 8 + (count + 1) / 2 * 2);
    return text;
}

Text readExtTextOut(const imaging::ByteReader& in) {
    enum Option : unsigned { Opaque = 2, Clipped = 4, RightToLeft = 0x80 };
    Text text;
    text.reference = pointBackwards(in, 6);
    const std::size_t count = in.u16(10);
    const unsigned options = in.u16(12);
    text.opaque = (options & Opaque) != 0;
    text.clipped = (options & Clipped) != 0;
    text.rightToLeft = (options & RightToLeft) != 0;
    std::size_t at = 14;
    if (text.opaque || text.clipped) {
        // The one rectangle whose sides stand in the usual order.
        text.rectangle =
            QRectF(QPointF(in.i16(at), in.i16(at + 2)), QPointF(in.i16(at + 4), in.i16(at + 6)));
        at += 8;
    }
    text.characters = bytesAt(in, at, count);
    at += (count + 1) / 2 * 2;
    if (in.has(at, 2 * count)) {
        for (std::size_t i = 0; i < count; ++i) {
            text.advances.push_back(in.i16(at + 2 * i));
        }
    }
    return text;
}

bool readRegionPaint(const WmfRecord& record, WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    const auto paint = [&](RegionAction action) {
        const auto found = reading.regions.find(in.u16(6));
        if (found == reading.regions.end()) {
            return;
        }
        RegionPaint result{action, found->second, std::nullopt, {}};
        if (action == RegionAction::Fill || action == RegionAction::Frame) {
            result.brush = in.u16(8);
        }
        if (action == RegionAction::Frame) {
            result.frame = sizeBackwards(in, 10);
        }
        reading.sink.take(result);
    };
    switch (record.type) {
    case FillRegion:
        paint(RegionAction::Fill);
        return true;
    case FrameRegion:
        paint(RegionAction::Frame);
        return true;
    case InvertRegion:
        paint(RegionAction::Invert);
        return true;
    case PaintRegion:
        paint(RegionAction::Paint);
        return true;
    default:
        return false;
    }
}

} // namespace

bool readWmfShape(const WmfRecord& record, WmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    RecordSink& sink = reading.sink;
    if (readRegionPaint(record, reading)) {
        return true;
    }
    switch (record.type) {
    case MoveTo_:
        sink.take(MoveTo{pointBackwards(in, 6)});
        return true;
    case LineTo_:
        sink.take(LineTo{pointBackwards(in, 6)});
        return true;
    case Polygon:
        sink.take(Poly{PolyKind::Polygon, pointsAt(in, 8, in.u16(6)), {}});
        return true;
    case Polyline:
        sink.take(Poly{PolyKind::Line, pointsAt(in, 8, in.u16(6)), {}});
        return true;
    case PolyPolygon:
        sink.take(readPolyPolygon(in));
        return true;
    case Rectangle:
    case Ellipse:
    case RoundRect:
    case Arc:
    case Pie:
    case Chord:
        sink.take(readBox(record));
        return true;
    case SetPixel_:
        sink.take(SetPixel{pointBackwards(in, 10), reading.colourAt(in, 6)});
        return true;
    case FloodFill_:
        sink.take(FloodFill{pointBackwards(in, 10), reading.colourAt(in, 6), FloodMode::ToBorder});
        return true;
    case ExtFloodFill:
        sink.take(FloodFill{pointBackwards(in, 12), reading.colourAt(in, 8),
                            in.u16(6) == 1 ? FloodMode::WhileSurface : FloodMode::ToBorder});
        return true;
    default:
        return false;
    }
}

bool readWmfText(const WmfRecord& record, WmfReading& reading) {
    switch (record.type) {
    case TextOut:
        reading.sink.take(readTextOut(record.in));
        return true;
    case ExtTextOut:
        reading.sink.take(readExtTextOut(record.in));
        return true;
    default:
        return false;
    }
}

} // namespace metafile
